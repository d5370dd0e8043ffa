#pragma once

// Result codes of every int operation of CKiv and CKivPrm.
enum KIV_STATUS : int {
    KIV_OK = 0,
    KIV_BAD_ARGUMENT = 20,
    KIV_CANNOT_OPEN = 550,
    KIV_NOT_LOADED = 551,
    KIV_BAD_FORMAT = 553,
    KIV_NO_TRANSFORM = 554
};

struct KIV_STATUS_TEXT {
    int code;
    const char* name;
    const char* text;
};

// One row per code, in ascending order.
inline const KIV_STATUS_TEXT (&kivStatusTexts())[6] {
    static constexpr KIV_STATUS_TEXT rows[] = {
        {KIV_OK, "KIV_OK", "success"},
        {KIV_BAD_ARGUMENT, "KIV_BAD_ARGUMENT", "a null pointer, or a count or order out of range"},
        {KIV_CANNOT_OPEN, "KIV_CANNOT_OPEN", "the file cannot be opened, read or written"},
        {KIV_NOT_LOADED, "KIV_NOT_LOADED", "no parameter file has been loaded into the record"},
        {KIV_BAD_FORMAT, "KIV_BAD_FORMAT", "the parameter file does not follow its format"},
        {KIV_NO_TRANSFORM, "KIV_NO_TRANSFORM",
         "the last update did not reach the orientation model"},
    };
    return rows;
}

// The text of a code; never null, also for a code that the library does not use.
inline const char* kivStatusText(int code) {
    for (const KIV_STATUS_TEXT& row : kivStatusTexts())
        if (row.code == code)
            return row.text;
    return "unknown status code";
}
