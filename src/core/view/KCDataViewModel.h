#pragma once

#include "view/KCDataViewLayoutSet.h"
#include "doc/KCDocView.h"
#include "host/KCMainProgDataExChange.h"
#include "view/TAG_SCROLLBORDER.h"
#include "view/TAG_VIEW_ROW.h"

#include <cstdint>
#include <memory>
#include <memory>
#include <set>
#include <string>

class KCDataDoc;
class KCDataViewListener;
class KCSearchHits;
class KCMouseController;
class KCNavigationController;
class KCValueEditController;

// The data view without a window: the layouts with their cursors and the scroll state of one
// hex-editor view of the document's buffer 0. Keys go down a chain of small controllers
// (navigation, then value editing), characters to the value editor and the mouse to its own
// controller; this class keeps the geometry, the scrolling and the caret's visibility.
// A widget forwards its input here, paints the rows this model renders and follows the
// scroll position; tests drive it directly. Every byte change goes through the document.
// All costs depend on the window size, never on the buffer size.
class KCDataViewModel : public KCDocView
{
public:
    enum Key {
        KeyLeft, KeyRight, KeyUp, KeyDown, KeyPageUp, KeyPageDown, KeyBackspace, KeyTab, KeyInsert,
        // Row start and end; with Control the buffer's start and end.
        KeyHome, KeyEnd,
    };
    enum Modifier : unsigned { NoModifier = 0, ShiftModifier = 1, ControlModifier = 2 };
    enum ScrollMode : int { SCROLLMODE_STATIC = 1, SCROLLMODE_KEEP = 2, SCROLLMODE_DYNAMIC = 3 };

    // Scrolling done by the last input: how the caret was brought back into view.
    struct ScrollSteps
    {
        int lines = 0;
        int pages = 0;
        int columns = 0;
        int columnPages = 0;
        bool jumped = false;
    };

    // Builds the standard layouts over the host's default buffer size.
    explicit KCDataViewModel(KCDataDoc *doc = nullptr, KCMainProgDataExChange *host = g_pMainProgDataExChange);
    ~KCDataViewModel() override;
    KCDataViewModel(const KCDataViewModel &) = delete;
    KCDataViewModel &operator=(const KCDataViewModel &) = delete;

    // `attach` registers the model as a view of the document; a widget that registers itself
    // and forwards the document's updates passes false.
    void setDocument(KCDataDoc *doc, bool attach = true);
    KCDataDoc *document() const { return m_doc; }
    KCMainProgDataExChange *host() const { return m_host; }
    void setListener(KCDataViewListener *listener) { m_listener = listener; }

    void OnUpdate(KCDocView *sender, long hint) override;
    bool isDataView() const override { return true; }
    std::string GetBufferLayoutName() const override;

    // Layouts.
    KCDataViewLayoutSet &layouts() { return m_layouts; }
    const KCDataViewLayoutSet &layouts() const { return m_layouts; }
    std::string GetBufferLayoutName(int index) const { return m_layouts.GetBufferLayoutName(index); }
    int GetBufferLayoutIndex(const std::string &name) const { return m_layouts.GetBufferLayoutIndex(name); }
    int SetBufferLayoutView(const std::string &name);
    int SetBufferLayoutView(int index);
    KCDataViewLayout *GetBufferLayoutView() const { return m_layouts.GetBufferLayoutView(); }
    // The fuse-map layout counts the fuse checksum instead of the byte sum.
    bool isFuseMapLayout() const;
    void ClearLA();
    // Device-family layouts (replacing one of the same name), followed by layoutsChanged().
    void DefineByteBufferLayoutV2(const std::string &name, int scrollFlags, int64_t first, int64_t last,
                                  int32_t addressOffset = 0);
    void DefineBytePic18FLayout(const std::string &name, int scrollFlags);
    // After defining or replacing layouts through layouts(): revalidate carets and the scroll range.
    void layoutsChanged();

    // Window geometry: pixels through the text metrics, or characters directly.
    void InitTextMetrics(int charWidth, int linePitch);
    int charWidth() const { return m_charWidth; }
    int linePitch() const { return m_linePitch; }
    void OnSize(int width, int height);
    void setViewportSize(int columns, int lines);
    int topLineCount() const;
    int64_t bodyLineCount() const;
    int widestRow() const;
    int visibleLines() const;   // whole body lines in the window
    int visibleColumns() const { return m_viewColumns; }
    int64_t firstVisibleLine() const { return m_firstLine; }
    int firstVisibleColumn() const { return m_firstColumn; }
    int64_t maxFirstLine() const;
    int maxFirstColumn() const;

    // Scrolling.
    void SetScrollMode(int mode, int a, int b);
    int scrollMode() const { return m_scrollMode; }
    int64_t GetScrollLineBegin() const { return m_border.lineBegin; }
    int64_t GetScrollLineEnd() const { return m_border.lineEnd; }
    int GetxScrollBeginPos() const { return m_border.columnBegin; }
    int GetxScrollEndPos() const { return m_border.columnEnd; }
    int GetScrollBorderTop() const { return m_border.top; }
    int GetScrollBorderBottom() const { return m_border.bottom; }
    void scrollToLine(int64_t line);
    void scrollLines(int64_t delta);
    void scrollPages(int64_t pages);
    void scrollToColumn(int column);
    void scrollColumns(int delta);
    void scrollColumnPages(int pages);
    const ScrollSteps &lastScroll() const { return m_steps; }
    void resetScrollSteps() { m_steps = ScrollSteps(); }

    // Painting: screen line 0 is the window's top; top-list rows first, then the body from
    // the first visible line. Reusing one row object keeps painting free of allocations.
    void renderScreenLine(int screenLine, TAG_VIEW_ROW &row) const;
    bool hasFocus() const { return m_focus; }
    bool isCaretShown() const;
    // The caret's place in the window in characters; false when it is out of sight.
    bool caretScreenPosition(int &column, int &line) const;

    // Input.
    void OnInitialUpdate();
    void OnSetFocus();
    void OnKillFocus();
    // True when the key was handled (or swallowed while the mouse button is held).
    bool OnKeyDown(Key key, unsigned modifiers = NoModifier);
    // True when a byte was written.
    bool OnChar(unsigned ch);
    TAG_VIEW_POSITION hitTest(int x, int y) const;
    TAG_VIEW_POSITION hitTestGrid(int screenColumn, int screenLine) const;
    void OnLButtonDown(int x, int y);
    void OnMouseMove(int x, int y);
    void OnLButtonUp();
    // `notches` > 0 is away from the user.
    void OnMouseWheel(int notches, unsigned modifiers = NoModifier);
    bool isInsertMode() const { return m_insertMode; }
    void setInsertMode(bool on) { m_insertMode = on; }

    // Caret and mark of the current layout.
    TAG_VIEW_POSITION caret() const;
    // Moves the caret to the first cell showing `address` and brings it into view.
    bool setCaretAddress(int64_t address);
    // Go To: an address in the units the current layout shows (words in the word view, the
    // device's display addresses with their offset) to the caret; false, nothing moved, when
    // it is no address of the buffer.
    bool goToDisplayAddress(uint64_t displayAddress);
    bool markRange(int64_t &low, int64_t &high) const;
    // Marks low..high and puts the caret at high (e.g. after a paste).
    bool setMarkRange(int64_t low, int64_t high);
    void dropMark();
    uint64_t bufferLimit() const;

    // Bytes changed since the buffer was loaded, replaced or saved (typed here or written by
    // any other path of the document).
    bool isByteModified(int64_t address) const;

    // The hits of the last find-all, painted in their own colours until replaced (null: none).
    void setSearchHits(std::shared_ptr<const KCSearchHits> hits);
    const KCSearchHits *searchHits() const { return m_hits.get(); }
    uint64_t modifiedByteCount() const;

private:
    friend class KCMouseController;
    friend class KCNavigationController;
    friend class KCValueEditController;

    void notify(unsigned changes);
    // Defines and shows the layouts the document's device asks for.
    void applyDeviceViews();
    // Puts the caret at `to` and brings it into view.
    void moveCaret(const TAG_VIEW_POSITION &to);
    void ensureCaretVisible();
    void setFirstLine(int64_t line);
    void setFirstColumn(int column);
    void revalidate();
    void clampScroll();
    void updateBorder();

    KCDataDoc *m_doc = nullptr;
    bool m_attached = false;
    KCMainProgDataExChange *m_host;
    KCDataViewListener *m_listener = nullptr;
    KCDataViewLayoutSet m_layouts;
    std::shared_ptr<const KCSearchHits> m_hits;
    int m_charWidth = 0;
    int m_linePitch = 0;
    int m_viewColumns = 0;
    int m_viewLines = 0; // whole screen lines, top rows included
    int64_t m_firstLine = 0;
    int m_firstColumn = 0;
    int m_scrollMode = SCROLLMODE_STATIC;
    int m_scrollA = -1;
    int m_scrollB = -1;
    TAG_SCROLLBORDER m_border;
    ScrollSteps m_steps;
    bool m_focus = false;
    // Typing always overwrites; the mode is the paste's. The Insert key's state starts at zero,
    // which is insert mode; pressing it toggles to overwrite.
    bool m_insertMode = true;
    std::unique_ptr<KCNavigationController> m_navigation;
    std::unique_ptr<KCValueEditController> m_valueEdit;
    std::unique_ptr<KCMouseController> m_mouse;
};
