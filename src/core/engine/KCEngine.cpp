#include "engine/KCEngine.h"

#include "engine/KCEngineListener.h"

#include <cstdio>

namespace {
constexpr unsigned Done = 100;
}

KCEngineResult KCEngine::blankCheck()
{
    std::vector<uint8_t> image;
    KCEngineResult r = read(&image);
    if (!r.passed())
        return r;
    for (size_t i = 0; i < image.size(); ++i) {
        if (image[i] != ErasedByte) {
            char text[96];
            std::snprintf(text, sizeof text, "not blank: 0x%02X at 0x%08zX", image[i], i);
            return KCEngineResult::fail(text);
        }
    }
    return KCEngineResult::pass();
}

KCEngineResult KCEngine::verify(const std::vector<uint8_t> &image)
{
    std::vector<uint8_t> actual;
    KCEngineResult r = read(&actual);
    return r.passed() ? compare(image, actual) : r;
}

KCEngineResult KCEngine::autoProgram(const std::vector<uint8_t> &image)
{
    KCEngineResult r = erase();
    if (r.passed())
        r = program(image);
    if (r.passed())
        r = verify(image);
    return r;
}

void KCEngine::message(const std::string &line) const
{
    if (m_listener)
        m_listener->engineMessage(line);
}

void KCEngine::progress(const std::string &operation, unsigned percent) const
{
    if (m_listener)
        m_listener->engineProgress(operation, percent > Done ? Done : percent);
}

KCEngineResult KCEngine::compare(const std::vector<uint8_t> &expected, const std::vector<uint8_t> &actual)
{
    const size_t n = expected.size() < actual.size() ? expected.size() : actual.size();
    char text[128];
    for (size_t i = 0; i < n; ++i) {
        if (expected[i] != actual[i]) {
            std::snprintf(text, sizeof text, "verify failed at 0x%08zX: 0x%02X read, 0x%02X expected", i, actual[i],
                          expected[i]);
            return KCEngineResult::fail(text);
        }
    }
    if (expected.size() != actual.size()) {
        std::snprintf(text, sizeof text, "verify failed: %zu bytes read, %zu expected", actual.size(), expected.size());
        return KCEngineResult::fail(text);
    }
    return KCEngineResult::pass();
}
