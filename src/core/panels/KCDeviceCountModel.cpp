#include "panels/KCDeviceCountModel.h"

#include "host/KCFormat.h"
#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"

#include <cstdio>

namespace {

// Labels by element: the even ids up to the yield.
constexpr unsigned LabelStrings[] = {KCHostStrings::CountPassLabel, KCHostStrings::CountFailLabel,
                                     KCHostStrings::CountTotalLabel, KCHostStrings::CountYieldLabel};

} // namespace

KCDeviceCountModel::KCDeviceCountModel(KCMainProgDataExChange *host) : m_host(host)
{
    setLabels();
    m_elements[TE_PASS].text = m_elements[TE_FAIL].text = m_elements[TE_TOTAL].text = Unknown;
    m_elements[TE_YIELD].text = Unknown;
    m_elements[TE_PASS].color = PassColor;
    m_elements[TE_FAIL].color = FailColor;
    m_elements[TE_TOTAL].color = TotalColor;
}

KCMainProgDataExChange *KCDeviceCountModel::host() const
{
    // A view may be made before the application's host exists; it is found when needed.
    return m_host ? m_host : g_pMainProgDataExChange;
}

void KCDeviceCountModel::setLabels()
{
    KCMainProgDataExChange *h = host();
    for (int i = 0; i < 4; ++i)
        m_elements[size_t(2 * i)].text = h ? h->GetHostString(LabelStrings[i]) : std::string();
}

KCDrawText *KCDeviceCountModel::GetTE(int id)
{
    return id >= 0 && id < TE_COUNT ? &m_elements[size_t(id)] : nullptr;
}

const KCDrawText *KCDeviceCountModel::GetTE(int id) const
{
    return id >= 0 && id < TE_COUNT ? &m_elements[size_t(id)] : nullptr;
}

void KCDeviceCountModel::CfgCountInfo(int pass, int fail)
{
    if (pass >= 0)
        m_pass = std::to_string(pass);
    if (fail >= 0)
        m_fail = std::to_string(fail);
    // From the raw values on purpose: 5 and -1 give 4.
    const long long total = (long long)pass + fail;
    if (total >= 0)
        m_total = std::to_string(total);
}

void KCDeviceCountModel::DrawCountInfo(double nowSeconds)
{
    if (!m_host)
        m_host = g_pMainProgDataExChange;
    if (!m_host)
        return;
    setLabels();
    const int pass = m_host->GetPassCount();
    const int fail = m_host->GetFailCount();
    CfgCountInfo(pass, fail);
    m_elements[TE_PASS].text = m_pass;
    m_elements[TE_FAIL].text = m_fail;
    m_elements[TE_TOTAL].text = m_total;

    const long long good = pass > 0 ? pass : 0;
    const long long done = good + (fail > 0 ? fail : 0);
    if (done > 0) {
        char text[32];
        std::snprintf(text, sizeof text, "%.1f %%", 100.0 * double(good) / double(done));
        m_elements[TE_YIELD].text = text;
    } else {
        m_elements[TE_YIELD].text = Unknown;
    }
    const int target = m_host->GetTargetCount();
    m_elements[TE_TARGET].text =
        target > 0 ? KCFormat::format(m_host->GetHostString(KCHostStrings::CountTarget),
                                      {target, int(good >= target ? 0 : target - good)})
                   : std::string();
    // The rate counts from the first time this view saw the counts.
    if (!m_rateStarted || done < m_rateStartTotal) {
        m_rateStarted = true;
        m_rateStart = nowSeconds;
        m_rateStartTotal = done;
    }
    const double elapsed = nowSeconds - m_rateStart;
    m_elements[TE_RATE].text =
        elapsed >= MinRateSeconds
            ? KCFormat::format(m_host->GetHostString(KCHostStrings::CountRate),
                               {(long long)((done - m_rateStartTotal) * 3600.0 / elapsed + 0.5)})
            : std::string();
}

void KCDeviceCountModel::InitDraw(int rowStep)
{
    const int top = Placement[0];
    const int left = Placement[1];
    const int valueOffset = Placement[2];
    for (int row = 0; row < TE_COUNT / 2; ++row) {
        KCDrawText &label = m_elements[size_t(2 * row)];
        KCDrawText &value = m_elements[size_t(2 * row + 1)];
        label.x = left;
        label.y = top + row * rowStep;
        value.x = left + valueOffset;
        value.y = label.y;
        label.placed = value.placed = true;
    }
}

void KCDeviceCountModel::resetCounts(const std::string &when)
{
    if (!m_host)
        m_host = g_pMainProgDataExChange;
    if (!m_host)
        return;
    const int pass = m_host->GetPassCount();
    const int fail = m_host->GetFailCount();
    m_host->ShowMessage(KCFormat::format(m_host->GetHostString(KCHostStrings::CountResetLog),
                                         {when, pass < 0 ? 0 : pass, fail < 0 ? 0 : fail}));
    m_host->SetCounts(0, 0);
    m_rateStarted = false;
}
