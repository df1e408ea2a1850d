#pragma once

#include <string>
#include <utility>

// A CSV serial variables file as a project carries it: where the file was and its whole
// content, byte for byte, so that the project keeps the rows it was set up with.
class cCSVSerialDataContent
{
public:
    cCSVSerialDataContent() = default;
    cCSVSerialDataContent(std::string path, std::string content)
        : m_path(std::move(path)), m_content(std::move(content))
    {
    }

    const std::string &path() const { return m_path; }
    const std::string &content() const { return m_content; }
    // No project: no file named.
    bool empty() const { return m_path.empty(); }

    bool operator==(const cCSVSerialDataContent &o) const { return m_path == o.m_path && m_content == o.m_content; }
    bool operator!=(const cCSVSerialDataContent &o) const { return !(*this == o); }

private:
    std::string m_path;
    std::string m_content;
};
