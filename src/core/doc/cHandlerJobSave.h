#pragma once

#include <cstdint>
#include <string>
#include <vector>

class KCDataDoc;

// Saving a handler job: the device action fixed in the document's algorithm parameters, the
// project written with the job's option box, and the CRC-16 the operator compares later.
class cHandlerJobSave
{
public:
    // The actions a job can fix, in the order they are offered; the first is the default.
    static const std::vector<std::string> &actions();
    static constexpr const char *FileFilterDescription = "Korel Handler Job File";
    static constexpr const char *FileExtension = "handlerjob";

    // Stores `action`, writes the job to `path` with `option` and flag 1. True on success,
    // with the written file's CRC-16 in `crc`; otherwise `error` says why and the earlier
    // file at `path` is as it was.
    static bool save(KCDataDoc &doc, const std::string &path, const std::string &action, int option, uint16_t &crc,
                     std::string &error);
};
