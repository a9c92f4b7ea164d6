/*
 * The first sector of the example's disk: boot code and a partition table.
 *
 * SPDX-License-Identifier: MIT
 */
#ifndef FIRST_SECTOR_H
#define FIRST_SECTOR_H

#include <stdint.h>

enum { FirstSectorSize = 512 };

/**
 * Creates a master boot record: code that starts the active partition, its three messages, a disk
 * signature, three partitions and the closing 55 AA.
 *
 * @param sector  FirstSectorSize bytes.
 */
void makeFirstSector(uint8_t* sector);

#endif
