#pragma once

#include <string>

class KCDocBase;

// A view of a document: told of changes, and asked what it shows. Qt views and headless
// views of the command line implement it.
class KCDocView
{
public:
    virtual ~KCDocView() = default;

    // The document changed; `sender` is the view that caused it (or null), `hint` says what.
    virtual void OnUpdate(KCDocView *sender, long hint) = 0;

    // True for a data view (hex editor of a buffer).
    virtual bool isDataView() const { return false; }
    // The name of the buffer layout a data view shows ("BYTEVIEW", "JEDVIEW", ...).
    virtual std::string GetBufferLayoutName() const { return {}; }
};
