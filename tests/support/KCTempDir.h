#pragma once

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>

// A folder of its own for one test, removed with everything in it afterwards.
struct TempDir
{
    TempDir()
    {
        char tmpl[] = "/tmp/krldv-test-XXXXXX";
        path = ::mkdtemp(tmpl);
    }
    ~TempDir() { std::system(("rm -rf '" + path + "'").c_str()); }
    std::string file(const std::string &name) const { return path + "/" + name; }
    std::string path;
};

inline void writeFile(const std::string &path, const std::string &text)
{
    std::ofstream(path, std::ios::binary) << text;
}

inline std::string readFile(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}
