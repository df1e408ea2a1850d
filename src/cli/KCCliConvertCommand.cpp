#include "KCCliConvertCommand.h"

#include "KCCliArgs.h"
#include "KCCliDeviceOption.h"
#include "KCCliHost.h"
#include "KCCliImageLoader.h"
#include "doc/KCDataDoc.h"
#include "KCFileFormatRegistry.h"
#include "fileio/KCFormatNames.h"

#include <cstdio>

namespace {

constexpr uint64_t MaxAddress = 0xFFFFFFFFull;

} // namespace

const char *KCCliConvertCommand::usage() const
{
    return "usage: krldv convert IN OUT [--from NAME] [--to NAME] [--fill BYTE] [--range START:END] [--device NAME]\n"
           "                          [--line-ending crlf|lf] [--record-bytes N] [--force]\n"
           "\n"
           "Reads IN into a buffer that starts at address 0 and reaches the highest loaded\n"
           "address (or END); bytes no record defines hold the fill byte (default 0xFF).\n"
           "Writes OUT from address 0 (or START) through the highest loaded address (or END);\n"
           "Intel and Motorola output without --range keep the input's gaps as gaps.\n"
           "  NAME             bin, intel, motorola, ti, jedec, svf, stapl, otp\n"
           "                   (default: from the extension, then the content; OUT: by extension)\n"
           "  --line-ending    crlf (default) or lf for text formats\n"
           "  --record-bytes   data bytes per Intel/Motorola record, 1..255 (default 16)\n"
           "  --force          convert between a JEDEC fuse map and a data format (one fuse per byte)\n"
           "IN - reads standard input, OUT - writes standard output (then --from or --to is needed).\n"
           "Writable: bin, intel, motorola, jedec. OUT is replaced only when all was written.\n"
           "  --device NAME  load through the device's size, ranges and address offset\n"
           "IN may be a project (.kpf2) or handler job (.handlerjob): its buffer 0 is converted.\n"
           "OUT.kpf2 writes a project holding the image and the device given with --device.\n";
}

int KCCliConvertCommand::convertProject(KCDataDoc &doc, const std::string &in, const std::string &out,
                                        LOADSAVE_FILETYPE projectIn, LOADSAVE_FILETYPE projectOut,
                                        const KCFileFormatInfo *to)
{
    if (projectIn != LS_INVALID ? !KCCliImageLoader::loadProject(doc, in, projectIn)
                                : !KCCliImageLoader::load(doc, in, std::string()))
        return CLI_INPUT_ERROR;
    if (projectOut != LS_INVALID) {
        if (!doc.HasDeviceX()) {
            std::fprintf(stderr, "krldv: %s: a project holds a device: give --device NAME\n", out.c_str());
            return CLI_INPUT_ERROR;
        }
        doc.SetKPFFileFlag(projectOut);
    } else {
        // The project's buffer 0, written as an image.
        doc.SetKPFFileFlag(0);
        doc.mainBufferParam()->fileType = KCFormatNames::loadSaveType(to->name);
    }
    return doc.OnSaveDocument(out.c_str()) ? CLI_OK : CLI_INPUT_ERROR;
}

int KCCliConvertCommand::run(const std::vector<std::string> &args)
{
    const KCCliArgs a(args, {"from", "to", "fill", "range", "line-ending", "record-bytes", "device"}, {"force"});
    if (a.helpRequested()) {
        std::fputs(usage(), stdout);
        return CLI_OK;
    }
    std::string problem = a.error();
    uint64_t fill = 0xFF, start = 0, end = 0, recordBytes = 16;
    const bool ranged = a.has("range");
    const std::string lineEnding = a.value("line-ending", "crlf");
    if (problem.empty() && a.positional().size() != 2)
        problem = "give an input and an output file";
    if (problem.empty() && a.has("fill") && !KCCliArgs::parseNumber(a.value("fill"), fill, 0xFF))
        problem = "--fill takes a byte value 0..255 (0x for hexadecimal), not " + a.value("fill");
    if (problem.empty() && ranged && (!KCCliArgs::parseRange(a.value("range"), start, end) || end > MaxAddress))
        problem = "--range takes START:END with START <= END below 4 GiB, not " + a.value("range");
    if (problem.empty() && lineEnding != "crlf" && lineEnding != "lf")
        problem = "--line-ending takes crlf or lf, not " + lineEnding;
    if (problem.empty() && a.has("record-bytes")
        && (!KCCliArgs::parseNumber(a.value("record-bytes"), recordBytes, 255) || recordBytes == 0))
        problem = "--record-bytes takes 1..255, not " + a.value("record-bytes");

    const KCFileFormatInfo *to = nullptr;
    // Projects are the document's own files, not image formats: their name says what they are.
    const LOADSAVE_FILETYPE projectIn = problem.empty() ? KCCliImageLoader::projectType(a.positional()[0]) : LS_INVALID;
    const LOADSAVE_FILETYPE projectOut = problem.empty() ? KCCliImageLoader::projectType(a.positional()[1]) : LS_INVALID;
    if (problem.empty() && projectOut == LS_INVALID)
        to = KCCliImageLoader::outputFormat(a.positional()[1], a.value("to"), problem);
    if (problem.empty() && projectIn == LS_INVALID)
        problem = KCCliImageLoader::formatProblem(a.positional()[0], a.value("from"));
    if (problem.empty())
        problem = KCCliDeviceOption::problem(a.value("device"));
    if (!problem.empty())
        return usageError(problem);

    KCCliHost host;
    host.setFillByte(static_cast<uint8_t>(fill));
    KCDataDoc doc;
    if (!KCCliDeviceOption::select(doc, a.value("device")))
        return CLI_INPUT_ERROR;
    const std::string &in = a.positional()[0];
    if (projectIn != LS_INVALID || projectOut != LS_INVALID)
        return convertProject(doc, in, a.positional()[1], projectIn, projectOut, to);
    KCCliImageLoader::Choice choice;
    if (!KCCliImageLoader::chooseFormat(in, a.value("from"), choice))
        return CLI_INPUT_ERROR;
    // A fuse map is no byte image: one fuse per byte either way is rarely what was meant.
    const bool fromFuses = KCFormatNames::loadSaveType(choice.chosen->name) == LS_JEDEC;
    const bool toFuses = KCFormatNames::loadSaveType(to->name) == LS_JEDEC;
    if (fromFuses != toFuses && !a.has("force"))
        return usageError(std::string(fromFuses ? "a JEDEC fuse map to a data format" : "a data image to a JEDEC fuse map")
                          + " makes one fuse per byte; give --force if that is meant");
    if (!KCCliImageLoader::load(doc, in, choice.chosen->name))
        return CLI_INPUT_ERROR;

    // The image keeps its shape: without --range the whole extent is saved, and record
    // formats write only the loaded ranges. A range past the data extends the image with fill.
    if (ranged) {
        cByteBuffer &buf = doc.AlgoParam().buffer(0);
        if (end >= buf.size() && !buf.resize(end + 1, static_cast<uint8_t>(fill))) {
            std::fprintf(stderr, "krldv: %s: not enough memory for the image\n", in.c_str());
            return CLI_INPUT_ERROR;
        }
        doc.setSaveRange(KCAddressRange{start, end});
    }
    doc.mainBufferParam()->fileType = KCFormatNames::loadSaveType(to->name);
    doc.saveOptions().crlf = lineEnding == "crlf";
    doc.saveOptions().bytesPerRecord = static_cast<unsigned>(recordBytes);
    if (!doc.OnSaveDocument(a.positional()[1].c_str()))
        return CLI_INPUT_ERROR;
    return CLI_OK;
}
