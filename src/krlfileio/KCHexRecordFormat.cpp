#include "KCHexRecordFormat.h"

#include "KCLoadTarget.h"
#include "KCTextScanner.h"

KCLoadResult KCHexRecordFormat::Load(const KCInputFile &file, KCByteArray &target, const KCLoadOptions &options)
{
    KCLoadResult result;
    KCTextScanner scanner(file, m_sink);
    KCLoadTarget loader(target, options, result);
    loader.setSizeHint(file.size / 2); // two hex digits per data byte at least
    result.ok = parse(scanner, loader, result, options);
    loader.finish(m_sink, file.name);
    return result;
}
