/*
 * The texts of the acquisition templates in German and Russian, sorted by the English text. The
 * translations become part of the template, so they must be valid XML content. Three are not words:
 * the language code, the two separators of numbers and the order of a date.
 *
 * SPDX-License-Identifier: MIT
 */
#include "acquisition_texts.h"

#include <stdio.h>
#include <string.h>

enum { LanguageColumns = 3 };

const AcquisitionLanguage acquisitionLanguages[AcquisitionLanguageCount] = {
    {"en", 0}, {"de", 1}, {"ru", 2}};

static const char* const texts[][LanguageColumns] = {
    {",.", ".,", "\u00a0,"},
    {"/s", "/s", "/с"},
    {"Acquisition", "Sicherung", "Снятие копии"},
    {"Acquisition complete, every sector was read",
     "Sicherung vollständig, alle Sektoren wurden gelesen",
     "Копия снята полностью, прочитаны все секторы"},
    {"Acquisition complete, with unreadable areas",
     "Sicherung abgeschlossen, mit nicht lesbaren Bereichen",
     "Копия снята, есть нечитаемые участки"},
    {"Acquisition report", "Sicherungsbericht", "Отчёт о снятии копии"},
    {"Acquisition stopped before the end of the device",
     "Sicherung vor dem Ende des Geräts abgebrochen", "Снятие копии прервано до конца устройства"},
    {"Active", "Aktiv", "Активный"},
    {"All times are local times of the imaging workstation. 1 GB is 1,000,000,000 bytes, 1 "
     "GiB is 1,073,741,824 bytes.",
     "Alle Zeiten sind Ortszeiten des Sicherungsrechners. 1 GB sind 1.000.000.000 Bytes, 1 "
     "GiB sind 1.073.741.824 Bytes.",
     "Время указано местное, по часам рабочей станции. 1 ГБ равен "
     "1\u00a0000\u00a0000\u00a0000 байт, 1 ГиБ равен 1\u00a0073\u00a0741\u00a0824 байт."},
    {"Attempts", "Versuche", "Попыток"},
    {"Average speed", "Mittlere Rate", "Средняя скорость"},
    {"Byte address", "Byteadresse", "Адрес в байтах"},
    {"Bytes", "Bytes", "Байты"},
    {"Capacity", "Kapazität", "Ёмкость"},
    {"Case", "Fall", "Дело"},
    {"Case number", "Fallnummer", "Номер дела"},
    {"Cause", "Ursache", "Причина"},
    {"Client", "Auftraggeber", "Заказчик"},
    {"Client reference", "Kundenzeichen", "Номер у заказчика"},
    {"Computed while the device was read, and again from the finished image.",
     "Beim Lesen des Geräts berechnet und aus dem fertigen Abbild nochmals.",
     "Вычислены при чтении устройства и повторно по готовому образу."},
    {"Condition", "Zustand", "Состояние"},
    {"Description", "Beschreibung", "Описание"},
    {"Device", "Gerät", "Устройство"},
    {"Duration", "Dauer", "Длительность"},
    {"End", "Ende", "Окончание"},
    {"Evidence item", "Asservat", "Вещественное доказательство"},
    {"Examiner", "Gutachter", "Эксперт"},
    {"Firmware", "Firmware", "Микропрограмма"},
    {"First sector", "Erster Sektor", "Первый сектор"},
    {"GB", "GB", "ГБ"},
    {"GiB", "GiB", "ГиБ"},
    {"Hash values", "Hashwerte", "Контрольные суммы"},
    {"Highest", "Höchste", "Наибольшая"},
    {"I confirm that this report describes the acquisition as it was carried out.",
     "Ich bestätige, dass dieser Bericht die Sicherung so beschreibt, wie sie durchgeführt wurde.",
     "Подтверждаю, что снятие копии проведено так, как описано в этом отчёте."},
    {"Image format", "Abbildformat", "Формат образа"},
    {"Image path", "Abbildpfad", "Путь к образу"},
    {"Image read back", "Abbild geprüft", "Проверка образа"},
    {"Interface", "Schnittstelle", "Интерфейс"},
    {"Item number", "Asservatnummer", "Номер предмета"},
    {"KiB", "KiB", "КиБ"},
    {"Lowest", "Niedrigste", "Наименьшая"},
    {"MB", "MB", "МБ"},
    {"Method", "Verfahren", "Алгоритм"},
    {"MiB", "MiB", "МиБ"},
    {"Model", "Modell", "Модель"},
    {"No answer in time", "Zeitüberschreitung", "Истекло время ожидания"},
    {"No.", "Nr.", "№"},
    {"Notes", "Anmerkungen", "Примечания"},
    {"Offset", "Offset", "Смещение"},
    {"Page", "Seite", "Страница"},
    {"Partition table and signature, decoded from the highlighted bytes below.",
     "Partitionstabelle und Kennung, gelesen aus den unten markierten Bytes.",
     "Таблица разделов и сигнатура, прочитанные из выделенных ниже байтов."},
    {"Place, date", "Ort, Datum", "Место, дата"},
    {"Position on the device", "Position auf dem Gerät", "Положение на устройстве"},
    {"Read speed", "Leserate", "Скорость чтения"},
    {"Read speed by position", "Leserate nach Position", "Скорость чтения по положению"},
    {"Received", "Eingang", "Получено"},
    {"Reviewer", "Prüfer", "Проверяющий"},
    {"Seal", "Siegel", "Пломба"},
    {"Sector not found", "Sektor nicht gefunden", "Сектор не найден"},
    {"Sector size", "Sektorgröße", "Размер сектора"},
    {"Sectors", "Sektoren", "Секторов"},
    {"Sectors not read", "Ungelesene Sektoren", "Не прочитано секторов"},
    {"Sectors read", "Sektoren gelesen", "Прочитано секторов"},
    {"Sectors that could not be read are filled with zero bytes in the image.",
     "Nicht lesbare Sektoren sind im Abbild mit Nullbytes gefüllt.",
     "Нечитаемые секторы заполнены в образе нулевыми байтами."},
    {"Segment size", "Segmentgröße", "Размер сегмента"},
    {"Segments", "Segmente", "Сегментов"},
    {"Serial number", "Seriennummer", "Серийный номер"},
    {"Signatures", "Unterschriften", "Подписи"},
    {"Size", "Größe", "Размер"},
    {"Start", "Beginn", "Начало"},
    {"Subject", "Betreff", "Предмет"},
    {"TB", "TB", "ТБ"},
    {"Text", "Text", "Текст"},
    {"The image differs from the data that was read",
     "Das Abbild weicht von den gelesenen Daten ab", "Образ отличается от прочитанных данных"},
    {"TiB", "TiB", "ТиБ"},
    {"Tool", "Werkzeug", "Программа"},
    {"Total", "Summe", "Всего"},
    {"Type", "Typ", "Тип"},
    {"Uncorrectable data", "Nicht korrigierbare Daten", "Неисправимая ошибка данных"},
    {"Unreadable areas", "Nicht lesbare Bereiche", "Нечитаемые участки"},
    {"Value", "Wert", "Значение"},
    {"Write blocker", "Schreibschutz", "Блокиратор записи"},
    {"Y-M-D", "D.M.Y", "D.M.Y"},
    {"bytes", "Bytes", "байт"},
    {"different", "verschieden", "различаются"},
    {"en", "de", "ru"},
    {"h", "h", "ч"},
    {"identical", "identisch", "совпадают"},
    {"kB", "kB", "КБ"},
    {"min", "min", "мин"},
    {"no", "nein", "нет"},
    {"s", "s", "с"},
    {"yes", "ja", "да"},
};

const char* translateAcquisitionText(const char* text, void* context) {
    AcquisitionTranslator* translator = context;
    for (size_t i = 0; i < sizeof(texts) / sizeof(texts[0]); ++i) {
        if (strcmp(texts[i][0], text) == 0) {
            return texts[i][translator->language->column];
        }
    }
    ++translator->missing;
    fprintf(stderr, "acquisition_report: no %s text for \"%s\"\n", translator->language->code,
            text);
    return text;
}
