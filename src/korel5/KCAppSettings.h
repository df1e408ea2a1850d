#pragma once

#include <QFont>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>

class QSettings;

// The application's own settings, kept with QSettings: what new buffers look like, the data
// views' font, the last folder and the recent files.
class KCAppSettings
{
public:
    static constexpr uint64_t DefaultBufferSize = 0x10000;
    static constexpr uint64_t MaxBufferSize = 0x100000000ull; // 4 GiB, the widest 32-bit address range
    static constexpr uint8_t DefaultFillByte = 0xFF;
    // Memory the undo history of a document may hold; a larger change is made only after asking.
    static constexpr unsigned DefaultUndoBudgetMiB = 256;
    static constexpr unsigned MaxUndoBudgetMiB = 64 * 1024;
    // Addresses a find-all lists; the count goes on beyond.
    static constexpr unsigned DefaultHitListLimit = 100000;
    static constexpr unsigned MaxHitListLimit = 10000000;

    // The user's settings store; `fileName` selects a file of its own (tests, portable use).
    explicit KCAppSettings(const QString &fileName = QString());
    ~KCAppSettings();

    uint64_t defaultBufferSize() const { return m_bufferSize; }
    void setDefaultBufferSize(uint64_t size);
    uint8_t fillByte() const { return m_fillByte; }
    void setFillByte(uint8_t fill) { m_fillByte = fill; }
    // 0 turns undo off.
    unsigned undoBudgetMiB() const { return m_undoBudgetMiB; }
    uint64_t undoBudgetBytes() const { return uint64_t(m_undoBudgetMiB) << 20; }
    void setUndoBudgetMiB(unsigned mib) { m_undoBudgetMiB = mib > MaxUndoBudgetMiB ? MaxUndoBudgetMiB : mib; }
    unsigned hitListLimit() const { return m_hitListLimit; }
    void setHitListLimit(unsigned n) { m_hitListLimit = n == 0 ? 1 : n > MaxHitListLimit ? MaxHitListLimit : n; }
    // The data views' font; the system's fixed font until one is chosen.
    QFont font() const { return m_font; }
    bool hasFont() const { return m_hasFont; }
    void setFont(const QFont &font);
    QString lastDirectory() const { return m_lastDirectory; }
    void setLastDirectory(const QString &dir) { m_lastDirectory = dir; }
    QStringList recentFiles() const { return m_recentFiles; }
    void setRecentFiles(const QStringList &files) { m_recentFiles = files; }
    QStringList recentDevices() const { return m_recentDevices; }
    void setRecentDevices(const QStringList &names) { m_recentDevices = names; }
    QByteArray windowState() const { return m_windowState; }
    QByteArray windowGeometry() const { return m_windowGeometry; }
    void setWindow(const QByteArray &geometry, const QByteArray &state);

    // Nothing is written back while read-only (screenshots and benchmarks leave no trace).
    void setReadOnly(bool readOnly) { m_readOnly = readOnly; }
    void save();

private:
    void load();

    std::unique_ptr<QSettings> m_store;
    uint64_t m_bufferSize = DefaultBufferSize;
    uint8_t m_fillByte = DefaultFillByte;
    unsigned m_undoBudgetMiB = DefaultUndoBudgetMiB;
    unsigned m_hitListLimit = DefaultHitListLimit;
    QFont m_font;
    bool m_hasFont = false;
    QString m_lastDirectory;
    QStringList m_recentFiles;
    QStringList m_recentDevices;
    QByteArray m_windowGeometry;
    QByteArray m_windowState;
    bool m_readOnly = false;
};
