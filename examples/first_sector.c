/*
 * Creates a master boot record byte by byte. The boot code moves itself from 0x7c00 to 0x0600,
 * looks for the active entry of the partition table, reads that partition's first sector with the
 * BIOS's extended read and jumps to it, or shows one of three messages and halts.
 *
 * SPDX-License-Identifier: MIT
 */
#include "first_sector.h"

#include <stddef.h>
#include <string.h>

enum {
    DiskSignatureOffset = 440,
    PartitionTableOffset = 446,
    PartitionEntrySize = 16,
    EndMarkOffset = 510
};

static const uint8_t bootCode[] = {
    0xfa, 0x31, 0xc0, 0x8e, 0xd0, 0xbc, 0x00, 0x7c, 0x8e, 0xd8, 0x8e, 0xc0, 0xfb, 0xfc, 0x89,
    0xe6, 0xbf, 0x00, 0x06, 0xb9, 0x00, 0x01, 0xf3, 0xa5, 0xea, 0x1d, 0x06, 0x00, 0x00, 0xbd,
    0xbe, 0x07, 0xb1, 0x04, 0xf6, 0x46, 0x00, 0x80, 0x75, 0x0a, 0x83, 0xc5, 0x10, 0xe2, 0xf5,
    0xbe, 0x71, 0x06, 0xeb, 0x2e, 0x66, 0x6a, 0x00, 0x66, 0xff, 0x76, 0x08, 0x06, 0xbb, 0x00,
    0x7c, 0x53, 0x6a, 0x01, 0x6a, 0x10, 0x89, 0xe6, 0xb4, 0x42, 0xcd, 0x13, 0x8d, 0x64, 0x10,
    0xbe, 0x95, 0x06, 0x72, 0x10, 0x81, 0x3e, 0xfe, 0x7d, 0x55, 0xaa, 0xbe, 0xb7, 0x06, 0x75,
    0x05, 0xea, 0x00, 0x7c, 0x00, 0x00, 0xac, 0x08, 0xc0, 0x74, 0x09, 0xbb, 0x07, 0x00, 0xb4,
    0x0e, 0xcd, 0x10, 0xeb, 0xf2, 0xf4, 0xeb, 0xfd,
};

/* The code contains the offsets of these null-terminated texts, which follow it. */
static const char bootMessages[] =
    "No active partition on this disk.\r\n\0"
    "The boot sector cannot be read.\r\n\0"
    "Nothing to start in the active partition.\r\n";

static void putNumber(uint8_t* target, uint32_t number) {
    for (int i = 0; i < 4; ++i) {
        target[i] = (uint8_t)(number >> (8 * i));
    }
}

/* Cylinder, head and sector fields are FE FF FF: only the sector numbers are used. */
static void putPartition(uint8_t* sector, size_t index, uint8_t state, uint8_t type, uint32_t first,
                         uint32_t count) {
    static const uint8_t noGeometry[3] = {0xfe, 0xff, 0xff};
    uint8_t* entry = sector + PartitionTableOffset + index * PartitionEntrySize;
    entry[0] = state;
    memcpy(entry + 1, noGeometry, sizeof(noGeometry));
    entry[4] = type;
    memcpy(entry + 5, noGeometry, sizeof(noGeometry));
    putNumber(entry + 8, first);
    putNumber(entry + 12, count);
}

void makeFirstSector(uint8_t* sector) {
    memset(sector, 0, FirstSectorSize);
    memcpy(sector, bootCode, sizeof(bootCode));
    memcpy(sector + sizeof(bootCode), bootMessages, sizeof(bootMessages));
    putNumber(sector + DiskSignatureOffset, 0x9e41c7d3);
    putPartition(sector, 0, 0x80, 0x07, 2048, 1024000);
    putPartition(sector, 1, 0x00, 0x07, 1026048, 838860800);
    putPartition(sector, 2, 0x00, 0x83, 839886848, 136886272);
    sector[EndMarkOffset] = 0x55;
    sector[EndMarkOffset + 1] = 0xaa;
}
