#pragma once

#include "KCFileFormat.h"

#include <cstdint>
#include <string>
#include <vector>

// The whole output of a hex record writer laid out before any of it is encoded: fixed
// texts (headers, address and end records) and stretches of data records whose text is a
// fixed function of address and bytes. Every piece's length and place in the file are
// known in advance, so large images are encoded by two threads, each into its own half,
// and written in large blocks. The fixed texts arrive through write(), in file order.
class KCHexRecordPlan : public KCOutputStream
{
public:
    // How one data record looks: mark, count, address, optional type byte, data, checksum.
    struct Shape
    {
        std::string mark;           // ":" or "S1".."S3"
        unsigned countExtra = 0;    // count byte = data bytes + countExtra
        unsigned addressBytes = 2;  // low address bytes written, big-endian
        bool typeByte = false;      // a 00 type byte follows the address
        unsigned checksumBias = 0;  // checksum = -(sum of count..data) - bias
        bool crlf = true;
    };

    explicit KCHexRecordPlan(const Shape &shape);

    bool write(const void *data, size_t size) override;
    // Records of `perRecord` bytes (the last may be shorter) for data[pos, pos + bytes),
    // the first at `address`.
    void addRecords(uint64_t pos, uint64_t address, uint64_t bytes, unsigned perRecord);

    uint64_t size() const { return m_size; }
    // Encodes everything and sends it to out; false when writing failed.
    bool writeTo(KCOutputStream &out, const uint8_t *data) const;

    // Characters of one data record carrying n bytes.
    size_t recordLength(unsigned n) const;

private:
    struct Piece
    {
        uint64_t offset;   // in the output
        uint64_t length;   // characters
        uint64_t pos;      // data offset of the first record; text: start in m_text
        uint64_t address;  // address of the first record
        uint64_t bytes;    // data bytes; 0 for a text piece
        unsigned perRecord;
    };

    // Encodes pieces [first, last) to out, which receives their characters in file order.
    template <typename Sink>
    void encode(size_t first, size_t last, const uint8_t *data, Sink &&sink) const;
    char *encodeRecords(const Piece &p, const uint8_t *data, char *out) const;
    bool writeSequential(KCOutputStream &out, const uint8_t *data) const;
    bool writeParallel(KCOutputStream &out, const uint8_t *data) const;

    Shape m_shape;
    std::string m_text;
    std::vector<Piece> m_pieces;
    uint64_t m_size = 0;
};
