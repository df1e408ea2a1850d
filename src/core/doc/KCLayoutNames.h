#pragma once

// Names of the standard buffer layouts; compared exactly and case-sensitively.
constexpr const char *LAYOUT_BYTEVIEW = "BYTEVIEW";
constexpr const char *LAYOUT_WORDVIEW = "WORDVIEW";
constexpr const char *LAYOUT_JEDVIEW = "JEDVIEW";
constexpr const char *LAYOUT_BYTEVIEW_OFFSET = "BYTEVIEWFUJITSU_0x1";
constexpr const char *LAYOUT_BYTEVIEW_PIC18F = "BYTEVIEW_PIC18F_0x2";
