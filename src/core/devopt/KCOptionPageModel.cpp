#include "devopt/KCOptionPageModel.h"

#include "devopt/KCOptionPageListener.h"
#include "doc/KCAlgoKeys.h"
#include "host/KCFormat.h"

#include <algorithm>

namespace {

uint8_t *bytes(TAG_UI_ALGODATA_KRL3 &record)
{
    return reinterpret_cast<uint8_t *>(&record);
}

const uint8_t *bytes(const TAG_UI_ALGODATA_KRL3 &record)
{
    return reinterpret_cast<const uint8_t *>(&record);
}

uint32_t rawField(const TAG_UI_ALGODATA_KRL3 &record, const KCOptionBinding &b)
{
    uint32_t raw = 0;
    for (uint32_t i = 0; i < b.width && b.offset + i < sizeof record; ++i)
        raw |= uint32_t(bytes(record)[b.offset + i]) << (8 * i);
    return raw;
}

// The value a checked check box writes: all of its field's bits, or the key's "on" value.
uint32_t onValue(const KCOptionBinding &b)
{
    return b.kind == KCOptionBinding::Field ? b.mask >> b.shift : b.value;
}

} // namespace

uint32_t KCOptionPageModel::readField(const TAG_UI_ALGODATA_KRL3 &record, const KCOptionBinding &b)
{
    return (rawField(record, b) & b.mask) >> b.shift;
}

void KCOptionPageModel::writeField(TAG_UI_ALGODATA_KRL3 &record, const KCOptionBinding &b, uint32_t value)
{
    const uint32_t raw = (rawField(record, b) & ~b.mask) | ((value << b.shift) & b.mask);
    for (uint32_t i = 0; i < b.width && b.offset + i < sizeof record; ++i)
        bytes(record)[b.offset + i] = uint8_t(raw >> (8 * i));
}

KCOptionPageModel::KCOptionPageModel(const KCOptionPageDesc &desc, TAG_UI_ALGODATA_KRL3 &record)
    : m_desc(desc), m_record(record)
{
    m_desc.forEach([this](const cParamStcBase &c) {
        m_states[c.id] = KCControlState();
        const uint32_t id = c.id;
        if (c.kind == cParamStcBase::Edit && c.binding.kind != KCOptionBinding::TextKey) {
            m_edits[id] = std::make_unique<cDDEdit>([this, &c](uint32_t &v) { return readValue(c, v); },
                                                    [this, &c](uint32_t v) { writeValue(c, v); },
                                                    [this, &c](const std::string &text) {
                                                        m_states[c.id].text = text;
                                                        m_states[c.id].differs = differsFromDefault(c);
                                                        show(c);
                                                    },
                                                    c.format);
        } else if (c.kind == cParamStcBase::ListEdit) {
            auto list = std::make_unique<cDDListEdit>();
            for (uint32_t i = 0; i < c.count; ++i) {
                const std::string key = c.elementKey(i);
                m_states[id].elements.emplace_back();
                list->add(cDDEdit(
                    [this, key](uint32_t &v) {
                        bool found = false;
                        v = KCAlgoKeys(m_record).numeric(key, &found);
                        return found;
                    },
                    [this, key](uint32_t v) { KCAlgoKeys(m_record).setNumeric(key, v); },
                    [this, &c, i](const std::string &text) {
                        m_states[c.id].elements[i] = text;
                        m_states[c.id].differs = differsFromDefault(c);
                        show(c);
                    },
                    c.format));
            }
            m_listEdits[id] = std::move(list);
        }
    });
}

KCOptionPageModel::~KCOptionPageModel() = default;

const KCControlState &KCOptionPageModel::state(uint32_t id) const
{
    static const KCControlState none;
    const auto it = m_states.find(id);
    return it == m_states.end() ? none : it->second;
}

bool KCOptionPageModel::readValue(const TAG_UI_ALGODATA_KRL3 &record, const cParamStcBase &c, uint32_t &value)
{
    switch (c.binding.kind) {
    case KCOptionBinding::Field:
        value = readField(record, c.binding);
        return true;
    case KCOptionBinding::NumericKey: {
        bool found = false;
        // Looking a key up only reads the record.
        value = KCAlgoKeys(const_cast<TAG_UI_ALGODATA_KRL3 &>(record)).numeric(c.binding.key, &found);
        return found;
    }
    default:
        value = 0;
        return false;
    }
}

void KCOptionPageModel::setDefaults(const TAG_UI_ALGODATA_KRL3 &defaults)
{
    m_defaults = std::make_unique<TAG_UI_ALGODATA_KRL3>(defaults);
}

bool KCOptionPageModel::differsFromDefault(const cParamStcBase &c) const
{
    if (!m_defaults)
        return false;
    const auto numericDiffers = [&](const cParamStcBase &control) {
        uint32_t now = 0, then = 0;
        const bool found = readValue(m_record, control, now);
        return found != readValue(*m_defaults, control, then) || now != then;
    };
    if (c.kind == cParamStcBase::ListEdit) {
        cParamStcBase element = c;
        element.binding.kind = KCOptionBinding::NumericKey;
        for (uint32_t i = 0; i < c.count; ++i) {
            element.binding.key = c.elementKey(i);
            if (numericDiffers(element))
                return true;
        }
        return false;
    }
    if (c.binding.kind == KCOptionBinding::TextKey) {
        std::string now, then;
        const bool found = KCAlgoKeys(m_record).text(c.binding.key, now);
        return found != KCAlgoKeys(*m_defaults).text(c.binding.key, then) || now != then;
    }
    return c.binding.kind != KCOptionBinding::None && numericDiffers(c);
}

void KCOptionPageModel::writeValue(const cParamStcBase &c, uint32_t value)
{
    if (c.binding.kind == KCOptionBinding::Field)
        writeField(m_record, c.binding, value);
    else if (c.binding.kind == KCOptionBinding::NumericKey)
        KCAlgoKeys(m_record).setNumeric(c.binding.key, value);
}

void KCOptionPageModel::show(const cParamStcBase &c)
{
    if (m_listener)
        m_listener->controlRefreshed(c, m_states[c.id]);
}

KCControlState KCOptionPageModel::fill(const cParamStcBase &c)
{
    KCControlState s = m_states[c.id];
    uint32_t value = 0;
    const bool found = readValue(c, value);
    s.value = value;
    switch (c.kind) {
    case cParamStcBase::CheckBox:
        s.checked = found && value != 0;
        break;
    case cParamStcBase::RadioButton:
        s.checked = found && value == c.binding.value;
        break;
    case cParamStcBase::ComboBox:
        if (c.values.empty()) {
            s.index = found && value < c.items.size() ? int(value) : -1;
        } else {
            const auto it = std::find(c.values.begin(), c.values.end(), value);
            s.index = found && it != c.values.end() ? int(it - c.values.begin()) : -1;
        }
        s.valid = !found || s.index >= 0;
        break;
    case cParamStcBase::Static:
    case cParamStcBase::Edit:
        if (c.binding.kind == KCOptionBinding::TextKey) {
            std::string text;
            KCAlgoKeys(m_record).text(c.binding.key, text);
            s.text = c.format.empty() ? text : KCFormat::format(c.format, {text});
        } else if (c.binding.kind != KCOptionBinding::None) {
            s.text = found ? KCFormat::format(c.format.empty() ? "%u" : c.format, {value}) : std::string();
        } else {
            s.text = c.caption;
        }
        break;
    default:
        break;
    }
    return s;
}

void KCOptionPageModel::Refresh()
{
    ++m_filling;
    m_desc.forEach([this](const cParamStcBase &c) {
        m_states[c.id].differs = differsFromDefault(c);
        if (const auto e = m_edits.find(c.id); e != m_edits.end()) {
            e->second->Show();
        } else if (const auto l = m_listEdits.find(c.id); l != m_listEdits.end()) {
            l->second->Show();
        } else {
            m_states[c.id] = fill(c);
            show(c);
        }
    });
    --m_filling;
}

void KCOptionPageModel::setChecked(uint32_t id, bool checked)
{
    const cParamStcBase *c = m_desc.find(id);
    if (filling() || !c)
        return;
    if (c->kind == cParamStcBase::CheckBox)
        writeValue(*c, checked ? onValue(c->binding) : 0);
    else if (c->kind == cParamStcBase::RadioButton && checked)
        writeValue(*c, c->binding.value);
    Refresh();
}

void KCOptionPageModel::setIndex(uint32_t id, int index)
{
    const cParamStcBase *c = m_desc.find(id);
    if (filling() || !c || c->kind != cParamStcBase::ComboBox || index < 0)
        return;
    if (c->values.empty())
        writeValue(*c, uint32_t(index));
    else if (size_t(index) < c->values.size())
        writeValue(*c, c->values[size_t(index)]);
    Refresh();
}

void KCOptionPageModel::editChanged(uint32_t id, const std::string &text, size_t element)
{
    if (filling())
        return;
    if (const auto e = m_edits.find(id); e != m_edits.end())
        e->second->OnChange(text);
    else if (const auto l = m_listEdits.find(id); l != m_listEdits.end() && element < l->second->size())
        l->second->OnChange(element, text);
}

void KCOptionPageModel::editFocusIn(uint32_t id, size_t element)
{
    if (const auto l = m_listEdits.find(id); l != m_listEdits.end() && element < l->second->size())
        l->second->OnSetFocus(element);
}

void KCOptionPageModel::editFocusLost(uint32_t id, size_t element)
{
    if (const auto e = m_edits.find(id); e != m_edits.end())
        e->second->OnKillFocus();
    else if (const auto l = m_listEdits.find(id); l != m_listEdits.end() && element < l->second->size())
        l->second->OnKillFocus(element);
}

int KCOptionPageModel::focusedElement(uint32_t id) const
{
    const auto l = m_listEdits.find(id);
    return l == m_listEdits.end() ? -1 : l->second->focusedElement();
}

void KCOptionPageModel::writeControl(const cParamStcBase &c)
{
    const KCControlState &s = m_states[c.id];
    switch (c.kind) {
    case cParamStcBase::CheckBox:
        writeValue(c, s.checked ? onValue(c.binding) : 0);
        break;
    case cParamStcBase::RadioButton:
        if (s.checked)
            writeValue(c, c.binding.value);
        break;
    case cParamStcBase::ComboBox:
        if (s.index >= 0)
            writeValue(c, c.values.empty() ? uint32_t(s.index) : c.values.at(size_t(s.index)));
        break;
    case cParamStcBase::Edit:
        if (const auto e = m_edits.find(c.id); e != m_edits.end())
            e->second->WriteBack();
        break;
    case cParamStcBase::ListEdit:
        m_listEdits.at(c.id)->WriteBack();
        break;
    default:
        break;
    }
}

bool KCOptionPageModel::message(uint32_t msg)
{
    if (msg == WM_WRITE_BACK) {
        m_desc.forEach([this](const cParamStcBase &c) { writeControl(c); });
        return true;
    }
    return msg == WM_IGNORED;
}
