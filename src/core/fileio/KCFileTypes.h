#pragma once

// Which file-name filter (extension family); the value indexes the extension table.
enum FILTERTYPE : int {
    FILTER_INVALID = -1,
    FILTER_NONE = 0,
    FILTER_ALL = 1,
    FILTER_BIN = 2,
    FILTER_HEX = 3,
    FILTER_MOTOROLA = 4,
    FILTER_TI = 5,
    FILTER_JED = 6,
    FILTER_SVF = 7,
    FILTER_OTP = 8,
    FILTER_KPF2 = 9,
    FILTER_DEF = 10,
    FILTER_SER = 11,
    FILTER_HANDLERJOB = 12,
    FILTER_STP = 13,
    FILTER_COUNT = 14,
};

// Which reader or writer the document uses; the value indexes the description table.
enum LOADSAVE_FILETYPE : int {
    LS_INVALID = -1,
    LS_BINARY = 0,
    LS_INTELHEX = 1,
    LS_MOTOROLA = 2,
    LS_TIHEX = 3,
    LS_JEDEC = 4,
    LS_SVF = 5,
    LS_HOLTEK_OTP = 6,
    LS_KPF2 = 7,
    LS_DEF = 8,
    LS_SERIAL = 9,
    LS_HANDLERJOB = 10,
    LS_STAPL = 11,
    LS_NOFORMAT = 12, // "no format": no table row carries it
};

// Which command opened the file dialog.
enum CALLFROMMENUE : int {
    CALLFROM_NONE = 0,
    CALLFROM_OPEN = 1,
    CALLFROM_RELOAD = 2,
    CALLFROM_SAVE = 3,
};
