#pragma once

#include "serial/KCSerialDefCtrl.h"
#include "KCTestHost.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

// A test host whose default serial definition file lives in a fresh folder of its own.
class KCSerialTestHost : public KCTestHost
{
public:
    KCSerialTestHost()
    {
        char tmpl[] = "/tmp/krldv-serialhost-XXXXXX";
        dir = ::mkdtemp(tmpl);
    }
    ~KCSerialTestHost() override { std::system(("rm -rf '" + dir + "'").c_str()); }
    std::string GetSerialDefaultFilePath() const override { return dir + "/" + KCSerialDefCtrl::DefaultFileName; }
    std::string fileText() const
    {
        std::ifstream in(GetSerialDefaultFilePath(), std::ios::binary);
        std::stringstream ss;
        ss << in.rdbuf();
        return ss.str();
    }

    std::string dir;
};
