#pragma once

#include "view/KCDataViewLayout.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class KCMainProgDataExChange;

// The named layouts of one data view and the one in use. Builds the standard layouts and
// the device-family layouts; texts of header and closing rows come from the host.
class KCDataViewLayoutSet
{
public:
    explicit KCDataViewLayoutSet(const KCMainProgDataExChange *host);

    // Standard layouts; each appends a new layout.
    void DefineByteBufferLayout(const std::string &name, int scrollFlags, int64_t first, int64_t last);
    void DefineWordBufferLayout(const std::string &name, int scrollFlags, int64_t first, int64_t last);
    void DefineBitBufferLayout(const std::string &name, int scrollFlags, int64_t first, int64_t last);
    // Device-family layouts; each replaces a layout of the same name. `addressOffset` is
    // added to the addresses shown.
    void DefineByteBufferLayoutV2(const std::string &name, int scrollFlags, int64_t first, int64_t last,
                                  int32_t addressOffset = 0);
    void DefineBytePic18FLayout(const std::string &name, int scrollFlags);

    // Pieces of layouts.
    void DefineByteStandardTopLayout(KCDataViewLayout &layout, const std::string &title, int hexX) const;
    // Header of a bit view whose bit cells start at column `x`, `y` bits per row in groups of 4.
    void DefineBitStandardTopLayout(KCDataViewLayout &layout, const std::string &title, int x, int y) const;
    static void DefineByteView(KCDataViewLayout &layout, int64_t first, int64_t last, int32_t addressOffset,
                               int addressDigits, int hexX, int charX);

    // The three standard layouts over 0 .. size - 1.
    void defineStandardLayouts(uint64_t size);
    // Rebuilds the standard layouts over a new buffer size, keeping their caret and mark.
    void resizeStandardLayouts(uint64_t size);
    uint64_t standardSize() const { return m_standardSize; }

    void ClearLA();
    int count() const { return static_cast<int>(m_layouts.size()); }
    KCDataViewLayout *layout(int index) const;
    std::string GetBufferLayoutName(int index) const;
    int GetBufferLayoutIndex(const std::string &name) const;
    // Select by name or index: 1 when found, 0 (and no change) otherwise.
    int SetBufferLayoutView(const std::string &name);
    int SetBufferLayoutView(int index);
    KCDataViewLayout *GetBufferLayoutView() const { return layout(m_current); }
    int currentIndex() const { return m_current; }

    void setTextMetrics(int charWidth, int linePitch);

private:
    std::unique_ptr<KCDataViewLayout> buildByteLayout(const std::string &name, int scrollFlags, int64_t first,
                                                      int64_t last, int32_t addressOffset) const;
    std::unique_ptr<KCDataViewLayout> buildWordLayout(const std::string &name, int scrollFlags, int64_t first,
                                                      int64_t last) const;
    std::unique_ptr<KCDataViewLayout> buildBitLayout(const std::string &name, int scrollFlags, int64_t first,
                                                     int64_t last) const;
    void addTextRow(KCDataViewLayout &layout, LAYOUT_LIST list, const std::string &text) const;
    void addClosingRow(KCDataViewLayout &layout) const;
    void install(std::unique_ptr<KCDataViewLayout> layout, bool replace);
    std::string hostString(unsigned id) const;

    const KCMainProgDataExChange *m_host;
    std::vector<std::unique_ptr<KCDataViewLayout>> m_layouts;
    int m_current = -1;
    uint64_t m_standardSize = 0;
    int m_charWidth = 0;
    int m_linePitch = 0;
};
