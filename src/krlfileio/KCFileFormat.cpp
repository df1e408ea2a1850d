#include "KCFileFormat.h"

bool KCFileFormat::Save(KCOutputStream &, const std::string &fileName, const uint8_t *, uint64_t,
                        const KCSaveOptions &)
{
    m_sink.message(KCFileMessage::Error, fileName, 0, "this format cannot be written");
    return false;
}
