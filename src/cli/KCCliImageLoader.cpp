#include "KCCliImageLoader.h"

#include "KCDataDoc.h"
#include "KCFile.h"

#include <cstdio>

bool KCCliImageLoader::load(KCDataDoc &doc, const std::string &path, const std::string &formatName)
{
    if (!formatName.empty() && formatName != "bin") {
        std::fprintf(stderr, "krldv: %s: format %s is not known\n", path.c_str(), formatName.c_str());
        return false;
    }
    try {
        KCFile file(path, KCFile::ReadOnly);
        const uint64_t size = file.size();
        cByteBuffer &buf = doc.AlgoParam().buffer(0);
        if (!buf.resize(size, 0xFF)) {
            std::fprintf(stderr, "krldv: %s: not enough memory for %llu bytes\n", path.c_str(),
                         static_cast<unsigned long long>(size));
            return false;
        }
        const size_t got = file.read(buf.data(), size);
        buf.resize(got, 0xFF);
        return true;
    } catch (const KCFileException &e) {
        std::fprintf(stderr, "krldv: %s\n", e.what());
        return false;
    }
}
