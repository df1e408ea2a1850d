#include "KCAppSettings.h"

#include <QFontDatabase>
#include <QSettings>

namespace {
const char *const Organisation = "krldv";
const char *const Application = "korel5";
const char *const KeyBufferSize = "buffer/defaultSize";
const char *const KeyFillByte = "buffer/fillByte";
const char *const KeyUndoBudget = "edit/undoBudgetMiB";
const char *const KeyHitListLimit = "search/hitListLimit";
const char *const KeyFont = "view/font";
const char *const KeyLastDirectory = "files/lastDirectory";
const char *const KeyRecentFiles = "files/recent";
const char *const KeyRecentDevices = "devices/recent";
const char *const KeyGeometry = "window/geometry";
const char *const KeyState = "window/state";
} // namespace

KCAppSettings::KCAppSettings(const QString &fileName)
    : m_store(fileName.isEmpty() ? std::make_unique<QSettings>(Organisation, Application)
                                 : std::make_unique<QSettings>(fileName, QSettings::IniFormat)),
      m_font(QFontDatabase::systemFont(QFontDatabase::FixedFont))
{
    load();
}

KCAppSettings::~KCAppSettings() = default;

void KCAppSettings::load()
{
    bool ok = false;
    const qulonglong size = m_store->value(KeyBufferSize, qulonglong(DefaultBufferSize)).toULongLong(&ok);
    setDefaultBufferSize(ok ? size : DefaultBufferSize);
    const uint fill = m_store->value(KeyFillByte, uint(DefaultFillByte)).toUInt(&ok);
    m_fillByte = ok && fill <= 0xFF ? uint8_t(fill) : DefaultFillByte;
    const uint undoMiB = m_store->value(KeyUndoBudget, DefaultUndoBudgetMiB).toUInt(&ok);
    setUndoBudgetMiB(ok ? undoMiB : DefaultUndoBudgetMiB);
    const uint hits = m_store->value(KeyHitListLimit, DefaultHitListLimit).toUInt(&ok);
    setHitListLimit(ok ? hits : DefaultHitListLimit);
    const QString fontText = m_store->value(KeyFont).toString();
    QFont font;
    if (!fontText.isEmpty() && font.fromString(fontText)) {
        m_font = font;
        m_hasFont = true;
    }
    m_lastDirectory = m_store->value(KeyLastDirectory).toString();
    m_recentFiles = m_store->value(KeyRecentFiles).toStringList();
    m_recentDevices = m_store->value(KeyRecentDevices).toStringList();
    m_windowGeometry = m_store->value(KeyGeometry).toByteArray();
    m_windowState = m_store->value(KeyState).toByteArray();
}

void KCAppSettings::setDefaultBufferSize(uint64_t size)
{
    // A settings file edited by hand must not make every new document fail.
    m_bufferSize = size == 0 || size > MaxBufferSize ? DefaultBufferSize : size;
}

void KCAppSettings::setFont(const QFont &font)
{
    m_font = font;
    m_hasFont = true;
}

void KCAppSettings::setWindow(const QByteArray &geometry, const QByteArray &state)
{
    m_windowGeometry = geometry;
    m_windowState = state;
}

void KCAppSettings::save()
{
    if (m_readOnly)
        return;
    m_store->setValue(KeyBufferSize, qulonglong(m_bufferSize));
    m_store->setValue(KeyFillByte, uint(m_fillByte));
    m_store->setValue(KeyUndoBudget, m_undoBudgetMiB);
    m_store->setValue(KeyHitListLimit, m_hitListLimit);
    if (m_hasFont)
        m_store->setValue(KeyFont, m_font.toString());
    m_store->setValue(KeyLastDirectory, m_lastDirectory);
    m_store->setValue(KeyRecentFiles, m_recentFiles);
    m_store->setValue(KeyRecentDevices, m_recentDevices);
    m_store->setValue(KeyGeometry, m_windowGeometry);
    m_store->setValue(KeyState, m_windowState);
    m_store->sync();
}
