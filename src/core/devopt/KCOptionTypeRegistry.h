#pragma once

#include "devopt/KCOptionPageEntry.h"

#include <cstdint>
#include <string>
#include <vector>

// The registered page builders: for each option type, in registration order, the pages its
// builder adds. Read from the type table (JSON): a "pages" object giving each page class its
// template and caption, and a "types" array of {type, pages}.
class KCOptionTypeRegistry
{
public:
    bool load(const std::string &path, std::string *error = nullptr);
    bool loadText(const std::string &text, const std::string &fileName, std::string *error = nullptr);

    bool isRegistered(uint32_t optionType) const;
    // The pages of the type's builder, in order; none when no builder serves the type.
    std::vector<KCOptionPageEntry> pages(uint32_t optionType) const;
    // The option types in registration order.
    std::vector<uint32_t> types() const;

    static const KCOptionTypeRegistry &shared();

private:
    struct Builder
    {
        uint32_t optionType;
        std::vector<KCOptionPageEntry> pages;
    };
    std::vector<Builder> m_builders;
};
