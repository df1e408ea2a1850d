#include "view/KCClipboardClass.h"

#include "view/KCKrlBinary.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace {

// The registered format keeps its own name as the format string.
const char *const KrlBinaryMime = KCKrlBinary::FormatName;
const char *const TextMime = "text/plain";

} // namespace

KCClipboardClass::KCClipboardClass() = default;

const char *KCClipboardClass::mimeType()
{
    return KrlBinaryMime;
}

int KCClipboardClass::put(const uint8_t *bytes, uint64_t count, int asText)
{
    QClipboard *clipboard = QGuiApplication::clipboard();
    if (!clipboard)
        return 0;
    auto *data = new QMimeData;
    if (asText == 1) {
        // Text stops at the first zero byte, as the block that carries it does.
        const std::string block = KCKrlBinary::encodeText(bytes, count);
        data->setData(TextMime, QByteArray(block.data(), int(block.find('\0'))));
    } else {
        const std::string block = KCKrlBinary::encode(bytes, count);
        data->setData(KrlBinaryMime, QByteArray(block.data(), int(block.size())));
    }
    clipboard->setMimeData(data);
    return 1;
}

uint64_t KCClipboardClass::get(std::vector<uint8_t> &bytes)
{
    bytes.clear();
    QClipboard *clipboard = QGuiApplication::clipboard();
    const QMimeData *data = clipboard ? clipboard->mimeData() : nullptr;
    if (!data)
        return 0;
    if (data->hasFormat(KrlBinaryMime)) {
        const QByteArray block = data->data(KrlBinaryMime);
        bytes = KCKrlBinary::decode(std::string(block.constData(), size_t(block.size())));
    } else if (data->hasFormat(TextMime)) {
        const QByteArray text = data->data(TextMime);
        bytes = KCKrlBinary::decodeText(std::string(text.constData(), size_t(text.size())));
    }
    return bytes.size();
}

int KCClipboardClass::isEmpty()
{
    QClipboard *clipboard = QGuiApplication::clipboard();
    const QMimeData *data = clipboard ? clipboard->mimeData() : nullptr;
    return data && (data->hasFormat(KrlBinaryMime) || data->hasFormat(TextMime)) ? 0 : 1;
}
