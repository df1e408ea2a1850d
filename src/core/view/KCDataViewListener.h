#pragma once

// What a data-view widget is told by its model after the model changed on its own account
// (a document update) or in answer to forwarded input.
class KCDataViewListener
{
public:
    enum Change : unsigned {
        ChangedRows = 1,     // repaint the rows
        ChangedScroll = 2,   // first visible line or column moved
        ChangedRange = 4,    // line count or widest row changed (layout switch, new buffer size)
        ChangedCaret = 8,    // caret moved, shown or hidden
        ChangedModified = 16 // the document's modified flag changed
    };

    virtual ~KCDataViewListener() = default;
    virtual void dataViewChanged(unsigned changes) = 0;
};
