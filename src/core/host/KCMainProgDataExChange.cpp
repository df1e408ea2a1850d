#include "host/KCMainProgDataExChange.h"

#include <sys/stat.h>

KCMainProgDataExChange *g_pMainProgDataExChange = nullptr;

uint32_t KCMainProgDataExChange::GetFileInfo(const std::string &path, TAG_KRLFILEINFO *info)
{
    struct stat st;
    if (!info || ::stat(path.c_str(), &st) != 0)
        return FILEINFO_FAILED_MASK;
    const uint64_t size = static_cast<uint64_t>(st.st_size);
    const uint64_t mtime = static_cast<uint64_t>(st.st_mtime);
    info->words[0] = static_cast<uint32_t>(size);
    info->words[1] = static_cast<uint32_t>(size >> 32);
    info->words[2] = static_cast<uint32_t>(mtime);
    info->words[3] = static_cast<uint32_t>(mtime >> 32);
    info->words[4] = static_cast<uint32_t>(st.st_mode);
    return 0;
}
