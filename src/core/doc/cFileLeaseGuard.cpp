#include "doc/cFileLeaseGuard.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr uint64_t PageSize = 4096;
// The real-time signal the kernel sends when a leased file is about to be written; one the
// toolkits we run with leave alone.
constexpr int LeaseSignalOffset = 6;
constexpr int SlotCount = 64;

enum SlotState : int {
    Free,      // unused
    Claimed,   // lease taken, mapping not yet watched
    Watching,  // the signal handler may break it
    Breaking,  // the handler is making the pages private
    Broken,    // pages private, lease given up
    Releasing, // the owner is giving it up
};

// Plain atomics in a fixed table: the signal handler must neither lock nor allocate.
struct Slot
{
    std::atomic<int> state{Free};
    std::atomic<int> fd{-1};
    std::atomic<uint8_t *> data{nullptr};
    std::atomic<uint64_t> bytes{0};
};

Slot g_slots[SlotCount];
std::atomic<unsigned> g_breaks{0};
std::once_flag g_installOnce;
bool g_installed = false;

int leaseSignal()
{
    return SIGRTMIN + LeaseSignalOffset;
}

// Moves the mapping's content into anonymous memory at the same address, so that neither a
// change of the file nor its truncation (which takes even private copies of pages past the
// new end away) can reach it. The copy runs on the main thread, where the buffer is written,
// so no write can fall between copying a page and replacing it.
void moveToAnonymous(uint8_t *data, uint64_t bytes)
{
    void *copy = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (copy == MAP_FAILED)
        return;
    std::memcpy(copy, data, bytes);
    if (::mremap(copy, bytes, bytes, MREMAP_MAYMOVE | MREMAP_FIXED, data) == MAP_FAILED)
        ::munmap(copy, bytes);
}

// Breaks the slot if it is still watched; returns once it no longer is.
void breakSlot(Slot &slot)
{
    int expected = Watching;
    if (!slot.state.compare_exchange_strong(expected, Breaking))
        return;
    moveToAnonymous(slot.data.load(), slot.bytes.load());
    ::fcntl(slot.fd.load(), F_SETLEASE, F_UNLCK);
    g_breaks.fetch_add(1);
    slot.state.store(Broken);
}

void onLeaseBreak(int, siginfo_t *info, void *)
{
    const int savedErrno = errno;
    for (Slot &slot : g_slots)
        if (slot.fd.load() == info->si_fd && slot.state.load() == Watching)
            breakSlot(slot);
    errno = savedErrno;
}

void install()
{
    struct sigaction current = {};
    if (::sigaction(leaseSignal(), nullptr, &current) != 0)
        return;
    // Somebody else's handler on this signal: leave it, and go without leases.
    if (!(current.sa_flags & SA_SIGINFO) && current.sa_handler != SIG_DFL)
        return;
    struct sigaction action = {};
    action.sa_sigaction = onLeaseBreak;
    action.sa_flags = SA_SIGINFO | SA_RESTART;
    sigemptyset(&action.sa_mask);
    g_installed = ::sigaction(leaseSignal(), &action, nullptr) == 0;
}

} // namespace

cFileLeaseGuard::~cFileLeaseGuard()
{
    release();
}

unsigned cFileLeaseGuard::breakCount()
{
    return g_breaks.load();
}

bool cFileLeaseGuard::take(int fd)
{
    release();
    std::call_once(g_installOnce, install);
    if (!g_installed)
        return false;
    int slot = -1;
    for (int i = 0; i < SlotCount && slot < 0; ++i) {
        int expected = Free;
        if (g_slots[i].state.compare_exchange_strong(expected, Claimed))
            slot = i;
    }
    if (slot < 0)
        return false;
    // A descriptor of our own: the lease lives as long as it is open, and children do not
    // inherit it.
    const int own = ::fcntl(fd, F_DUPFD_CLOEXEC, 0);
    // The break is answered on the main thread: it lives as long as the process, and it is
    // the thread that writes into buffers.
    const f_owner_ex owner = {F_OWNER_TID, ::getpid()};
    if (own < 0 || ::fcntl(own, F_SETOWN_EX, &owner) != 0 || ::fcntl(own, F_SETSIG, leaseSignal()) != 0
        || ::fcntl(own, F_SETLEASE, F_RDLCK) != 0) {
        if (own >= 0)
            ::close(own);
        g_slots[slot].state.store(Free);
        return false;
    }
    g_slots[slot].fd.store(own);
    m_slot = slot;
    return true;
}

void cFileLeaseGuard::watch(uint8_t *data, uint64_t bytes)
{
    if (m_slot < 0)
        return;
    Slot &slot = g_slots[m_slot];
    slot.data.store(data);
    slot.bytes.store(bytes);
    slot.state.store(Watching);
    // A writer that came between taking the lease and now was signalled while nothing was
    // watched; the lease then shows the break in progress, and we answer it here.
    if (::fcntl(slot.fd.load(), F_GETLEASE) != F_RDLCK)
        breakSlot(slot);
}

void cFileLeaseGuard::release()
{
    if (m_slot < 0)
        return;
    Slot &slot = g_slots[m_slot];
    int expected = Watching;
    if (!slot.state.compare_exchange_strong(expected, Releasing)) {
        while (slot.state.load() == Breaking)
            sched_yield();
        slot.state.store(Releasing);
    }
    const int fd = slot.fd.exchange(-1);
    ::fcntl(fd, F_SETLEASE, F_UNLCK);
    ::close(fd);
    slot.data.store(nullptr);
    slot.bytes.store(0);
    slot.state.store(Free);
    m_slot = -1;
}
