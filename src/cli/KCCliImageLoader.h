#pragma once

#include <string>

class KCDataDoc;

// Loads an image file into a document's buffer for the commands; reports failures on stderr
// naming the file.
class KCCliImageLoader
{
public:
    static bool load(KCDataDoc &doc, const std::string &path, const std::string &formatName);
};
