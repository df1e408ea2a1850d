#include "fileio/KCFileTypeTable.h"

#include "fileio/KCFileDialogCore.h"
#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"

#include <algorithm>
#include <cctype>

namespace {

std::string lower(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return std::tolower(c); });
    return s;
}

} // namespace

const std::vector<KCFileTypeRow> &KCFileTypeTable::rows()
{
    // In LOADSAVE_FILETYPE order: the type is also the index of the dialog's description table.
    static const std::vector<KCFileTypeRow> table = {
        {LS_BINARY, "bin", FILTER_BIN, KCHostStrings::FileTypeBinary, nullptr, true, true, POSTLOAD_NONE},
        {LS_INTELHEX, "intel", FILTER_HEX, KCHostStrings::FileTypeIntel, nullptr, true, true, POSTLOAD_NONE},
        {LS_MOTOROLA, "motorola", FILTER_MOTOROLA, KCHostStrings::FileTypeMotorola, nullptr, true, true,
         POSTLOAD_NONE},
        {LS_TIHEX, "ti", FILTER_TI, KCHostStrings::FileTypeTi, nullptr, true, false, POSTLOAD_NONE},
        {LS_JEDEC, "jedec", FILTER_JED, KCHostStrings::FileTypeJedec, nullptr, true, true, POSTLOAD_FUSE_MAP},
        {LS_SVF, "svf", FILTER_SVF, KCHostStrings::FileTypeSvf, nullptr, true, false, POSTLOAD_NONE},
        {LS_HOLTEK_OTP, "otp", FILTER_OTP, 0, "Holtek OTP-File", true, false, POSTLOAD_NONE},
        {LS_KPF2, nullptr, FILTER_KPF2, 0, "Korel Project File 2", true, true, POSTLOAD_NONE},
        {LS_DEF, nullptr, FILTER_DEF, 0, "KRL-Def File", false, false, POSTLOAD_NONE},
        {LS_SERIAL, nullptr, FILTER_SER, 0, "Korel Serial File", false, false, POSTLOAD_NONE},
        {LS_HANDLERJOB, nullptr, FILTER_HANDLERJOB, 0, "Korel Handler Job File", true, true, POSTLOAD_NONE},
        {LS_STAPL, "stapl", FILTER_STP, 0, "STAPL File", true, false, POSTLOAD_NONE},
    };
    return table;
}

const KCFileTypeRow *KCFileTypeTable::row(LOADSAVE_FILETYPE type)
{
    for (const KCFileTypeRow &r : rows())
        if (r.type == type)
            return &r;
    return nullptr;
}

const KCFileTypeRow *KCFileTypeTable::byFormatName(const std::string &name)
{
    for (const KCFileTypeRow &r : rows())
        if (r.formatName && name == r.formatName)
            return &r;
    return nullptr;
}

std::string KCFileTypeTable::description(const KCFileTypeRow &row)
{
    if (!row.descriptionId)
        return row.description;
    return g_pMainProgDataExChange ? g_pMainProgDataExChange->GetHostString(row.descriptionId)
                                   : "<string " + std::to_string(row.descriptionId) + ">";
}

bool KCFileTypeTable::isFamilyExtension(const KCFileTypeRow &row, const std::string &extension)
{
    const std::string &family = KCFileDialogCore::extensionTable()[row.filter];
    const std::string ext = lower(extension);
    size_t start = 0;
    while (true) {
        const size_t bar = family.find('|', start);
        if (family.compare(start, bar == std::string::npos ? std::string::npos : bar - start, ext) == 0)
            return !ext.empty();
        if (bar == std::string::npos)
            return false;
        start = bar + 1;
    }
}
