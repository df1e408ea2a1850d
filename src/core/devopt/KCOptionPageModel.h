#pragma once

#include "devopt/KCControlState.h"
#include "devopt/KCOptionPageDesc.h"
#include "devopt/cDDEdit.h"
#include "devopt/cDDListEdit.h"
#include "doc/TAG_UI_ALGODATA_KRL3.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>

class KCOptionPageListener;

// The rules of one option page over a device parameter record. Refresh fills every control
// from the record without writing to it; while it runs the re-entry counter is raised and
// the notifications it provokes are ignored. A change writes the control's bit, field or
// key and refreshes, so dependent controls follow.
class KCOptionPageModel
{
public:
    // Window messages a page accepts: write every control back into the record, and one
    // that is accepted and ignored.
    static constexpr uint32_t WM_WRITE_BACK = 0x805C;
    static constexpr uint32_t WM_IGNORED = 0x805D;

    // The description and the record must outlive the model.
    KCOptionPageModel(const KCOptionPageDesc &desc, TAG_UI_ALGODATA_KRL3 &record);
    ~KCOptionPageModel();

    void setListener(KCOptionPageListener *listener) { m_listener = listener; }
    const KCOptionPageDesc &desc() const { return m_desc; }
    TAG_UI_ALGODATA_KRL3 &record() { return m_record; }

    // The device's own settings; controls whose value differs from them are marked.
    void setDefaults(const TAG_UI_ALGODATA_KRL3 &defaults);

    void Refresh();
    bool filling() const { return m_filling > 0; }
    const KCControlState &state(uint32_t id) const;

    // Notifications of the controls: a check box or radio button clicked, a combo item
    // chosen, an edit's text changed, an edit element gaining or losing the focus.
    void setChecked(uint32_t id, bool checked);
    void setIndex(uint32_t id, int index);
    void editChanged(uint32_t id, const std::string &text, size_t element = 0);
    void editFocusIn(uint32_t id, size_t element = 0);
    void editFocusLost(uint32_t id, size_t element = 0);
    // The element of a list edit that has the focus, -1 when none.
    int focusedElement(uint32_t id) const;

    // True when the page handles the message.
    bool message(uint32_t msg);

    // A field's value (mask applied and shifted down) and writing one.
    static uint32_t readField(const TAG_UI_ALGODATA_KRL3 &record, const KCOptionBinding &b);
    static void writeField(TAG_UI_ALGODATA_KRL3 &record, const KCOptionBinding &b, uint32_t value);

private:
    bool readValue(const cParamStcBase &c, uint32_t &value) const { return readValue(m_record, c, value); }
    static bool readValue(const TAG_UI_ALGODATA_KRL3 &record, const cParamStcBase &c, uint32_t &value);
    bool differsFromDefault(const cParamStcBase &c) const;
    void writeValue(const cParamStcBase &c, uint32_t value);
    KCControlState fill(const cParamStcBase &c);
    void writeControl(const cParamStcBase &c);
    void show(const cParamStcBase &c);

    const KCOptionPageDesc &m_desc;
    TAG_UI_ALGODATA_KRL3 &m_record;
    KCOptionPageListener *m_listener = nullptr;
    int m_filling = 0;
    std::map<uint32_t, KCControlState> m_states;
    std::map<uint32_t, std::unique_ptr<cDDEdit>> m_edits;
    std::map<uint32_t, std::unique_ptr<cDDListEdit>> m_listEdits;
    std::unique_ptr<TAG_UI_ALGODATA_KRL3> m_defaults;
};
