#pragma once

#include <string>

class KCSerialState;
class KCMainProgDataExChange;

// What the serial-number dialog edits, apart from its widgets: the choice of definition
// file, the representation, where the number goes, and the first block's series. The dialog
// shows this state and forwards the user's changes; applying it to the document happens here.
class KCSerialSettings
{
public:
    enum Choice { ChoiceNone = 0, ChoiceInternal = 1, ChoiceCustom = 2 };

    // Reads the document's settings.
    explicit KCSerialSettings(KCSerialState *state);

    // Which choice the document's settings are: none, the default file, or another file.
    static Choice GetSerialChoiceType(const KCSerialState &state);

    Choice choice() const { return m_choice; }
    void setChoice(Choice choice);
    const std::string &fileName() const { return m_fileName; }
    void setFileName(const std::string &path); // a file the user chose
    unsigned flags() const { return m_flags; }
    // Sets one representation bit and clears its partner (DEC/HEX, ASC/BIN, big/little endian).
    void setFlag(unsigned bit);
    // A failed device's number: used up ("discard") or given back ("reuse"), as a flag bit.
    bool reuseFailed() const;
    void setReuseFailed(bool reuse);
    unsigned address() const { return m_address; }
    void setAddress(unsigned address) { m_address = address; }
    unsigned byteCount() const { return m_byteCount; }
    void setByteCount(unsigned count) { m_byteCount = count; }
    void setReloadRequested(bool reload) { m_reload = reload; }

    // The first block of the chosen file (read from it; 0 when it has none).
    unsigned firstLength() const { return m_firstLength; }
    unsigned firstNext() const { return m_firstNext; }
    unsigned firstStep() const { return m_firstStep; }
    void setFirst(unsigned length, unsigned next, unsigned step);
    bool readFirstBlock();
    // Writes the first block's length, next and step into the chosen file.
    bool OnSerialSaveDefault();

    // The number the next device would get with these settings, as bytes; false without one.
    bool preview(std::string &bytes) const;
    // The preview for a person: hex bytes, and the text for ASCII representations.
    std::string previewText() const;
    // Why the next number could not be written whole with these settings, or empty.
    std::string conflict() const;

    // Applies to the document; never consumes a number. Returns true when the document changed.
    bool OnApply();

private:
    KCSerialState *m_state;
    Choice m_choice = ChoiceNone;
    std::string m_fileName;
    bool m_fileChosen = false;
    bool m_reload = false;
    unsigned m_flags = 0;
    unsigned m_address = 0;
    unsigned m_byteCount = 0;
    unsigned m_firstLength = 0;
    unsigned m_firstNext = 0;
    unsigned m_firstStep = 0;
};
