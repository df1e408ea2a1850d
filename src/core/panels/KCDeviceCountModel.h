#pragma once

#include "panels/KCDrawText.h"

#include <array>
#include <string>

class KCMainProgDataExChange;

// Text elements of the counter view: even ids labels, odd ids values.
enum TEXT_ELEMENT_ID : int {
    TE_PASS_LABEL = 0,
    TE_PASS = 1,
    TE_FAIL_LABEL = 2,
    TE_FAIL = 3,
    TE_TOTAL_LABEL = 4,
    TE_TOTAL = 5,
    TE_YIELD_LABEL = 6,
    TE_YIELD = 7,
    TE_TARGET = 8,
    TE_RATE = 9,
    TE_COUNT = 10,
};

// What the production counter view shows, without widgets: the texts of its ten elements,
// their colours and places, formed from the host's pass and fail counts.
class KCDeviceCountModel
{
public:
    static constexpr const char *Unknown = "-------";
    static constexpr uint32_t PassColor = 0x00AF00;
    static constexpr uint32_t FailColor = 0xFF0000;
    static constexpr uint32_t TotalColor = 0x000000;
    // The view's placement values: first row, label left, value offset, and the row step.
    static constexpr std::array<int, 9> Placement = {200, 10, 200, 10, 0, 50, 200, 0, 200};
    // Devices per hour are shown once the run has lasted this long.
    static constexpr double MinRateSeconds = 60.0;

    explicit KCDeviceCountModel(KCMainProgDataExChange *host);

    // Null for an id outside the list.
    KCDrawText *GetTE(int id);
    const KCDrawText *GetTE(int id) const;

    // Formats the counts: each with "%d" when it is >= 0, the total pass + fail of the raw
    // values when that is >= 0; a negative value keeps its previous text.
    void CfgCountInfo(int pass, int fail);
    // Reads the host's counts at `nowSeconds` and sets every value text.
    void DrawCountInfo(double nowSeconds);
    // Places the labels one row step apart and each value right of its label.
    void InitDraw(int rowStep);

    const std::string &passText() const { return m_pass; }
    const std::string &failText() const { return m_fail; }
    const std::string &totalText() const { return m_total; }

    // Clears the host's counts and logs what was cleared; `when` is the time as text.
    void resetCounts(const std::string &when);

private:
    KCMainProgDataExChange *m_host;
    KCMainProgDataExChange *host() const;
    void setLabels();
    std::array<KCDrawText, TE_COUNT> m_elements;
    std::string m_pass = Unknown;
    std::string m_fail = Unknown;
    std::string m_total = Unknown;
    // Where the devices-per-hour figure counts from.
    bool m_rateStarted = false;
    double m_rateStart = 0;
    long long m_rateStartTotal = 0;
};
