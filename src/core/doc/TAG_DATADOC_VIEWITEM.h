#pragma once

#include <string>

struct TAG_BUFFER_PARAM;
class KCDocView;

// Kinds of document tree items.
enum : int {
    VIEWITEM_KIND_MAIN = 0,
    VIEWITEM_KIND_BUFFERVIEW = 2,
    VIEWITEM_KIND_DEVICEHELP = 3,
    VIEWITEM_KIND_HANDLER = 4,
    VIEWITEM_KIND_COUNTER = 5,
};

// One item of the document's workspace tree; a buffer view when its kind is 2 and it
// carries buffer parameters.
struct TAG_DATADOC_VIEWITEM
{
    int bufferId = -1;
    TAG_BUFFER_PARAM *bufferParam = nullptr; // not owned
    std::string text1;
    std::string text2;
    int number = -1;
    int flags = 0;
    std::string text3;
    int kind = 0;
    KCDocView *view = nullptr; // not owned
    int extra1 = 0;
    int extra2 = 0;

    bool isBufferView() const { return kind == VIEWITEM_KIND_BUFFERVIEW && bufferParam != nullptr; }
};
