#pragma once

#include "doc/DEVICE_KRLXDEF_ITEM.h"
#include "doc/TAG_BUFFER_PARAM.h"
#include "doc/TAG_DATADOC_VIEWITEM.h"
#include "doc/TAG_UI_ALGODATA_KRL3.h"
#include "doc/TAG_WINDOW_PLACEMENT.h"
#include "fileio/KCFileTypes.h"
#include "serial/cCSVSerialDataContent.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// Everything a project file holds, read and checked but not yet applied: a failed or
// abandoned load leaves the document as it was, and PostOpenLoadFile moves it in at once.
class cKpf2ReadShadowData
{
public:
    struct Buffer
    {
        uint64_t size = 0;
        uint8_t fill = 0xFF;
        // Defined ranges: first address and the bytes from there.
        std::vector<std::pair<uint64_t, std::vector<uint8_t>>> ranges;
    };

    // LS_KPF2 for a project, LS_HANDLERJOB for a handler job.
    LOADSAVE_FILETYPE kind = LS_KPF2;
    int version = 0;
    std::optional<DEVICE_KRLXDEF_ITEM> device;
    TAG_UI_ALGODATA_KRL3 record{};
    std::vector<Buffer> buffers;
    TAG_BUFFER_PARAM bufferParam;
    std::optional<std::pair<uint64_t, uint64_t>> saveRange;
    // A data file the project loads on opening, when it names one.
    std::string dataFile;
    LOADSAVE_FILETYPE dataFileType = LS_BINARY;

    int serialMode = 0;
    unsigned serialFlags = 0;
    unsigned serialByteCount = 0;
    unsigned serialAddress = 0;
    std::string serialDefPath;

    int passCount = -1;
    int failCount = -1;
    int targetCount = 0;

    // Since version 2. The workspace-tree items, without their run-time links (buffer id, buffer parameters,
    // window); empty when the file predates them, so the device's own items stay.
    std::vector<TAG_DATADOC_VIEWITEM> viewItems;
    std::optional<TAG_WINDOW_PLACEMENT> placement;
    // The CSV serial project, when the project has one.
    std::optional<cCSVSerialDataContent> csvSerial;

    // A handler job's fixed action and the state of its option box.
    std::string action;
    int optionBox = 0;

    bool loaded = false;
};
