#pragma once

#include <cstddef>
#include <cstdint>

// Keeps a private mapping of a file the same as the file was when it was mapped.
//
// Mapping an image file copy-on-write lets a gigabyte buffer share the kernel's page cache
// instead of taking fresh, zeroed memory and copying into it. But pages of such a mapping
// that were never written still show the file, so a later change of the file by another
// program would change the buffer too. A read lease on the file closes that gap: before any
// process may open the file for writing or truncate it, the kernel notifies us, and we move
// the mapping's content into anonymous memory and only then let the writer go on.
//
// Without a lease (a file open for writing somewhere, a file of another user, a file system
// without leases) `take` refuses and the caller reads the file instead.
class cFileLeaseGuard
{
public:
    cFileLeaseGuard() = default;
    ~cFileLeaseGuard();
    cFileLeaseGuard(const cFileLeaseGuard &) = delete;
    cFileLeaseGuard &operator=(const cFileLeaseGuard &) = delete;

    // Takes a read lease on the open file `fd` (a descriptor of its own is kept) and watches
    // `bytes` bytes at `data`, the private mapping made of it after this call succeeds.
    // The mapping must be in place before `watch` is called.
    bool take(int fd);
    void watch(uint8_t *data, uint64_t bytes);

    // Gives the lease up; the caller then drops or replaces the mapping.
    void release();

    bool isHeld() const { return m_slot >= 0; }

    // How many watched mappings were made private because somebody wanted to write the file;
    // for tests and diagnostics.
    static unsigned breakCount();

private:
    int m_slot = -1;
};
