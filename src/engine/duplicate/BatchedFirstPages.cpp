#include "engine/duplicate/BatchedFirstPages.h"

#if defined(VELMORA_HAVE_LIBURING)
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <liburing.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#endif

namespace velmora {

#if defined(VELMORA_HAVE_LIBURING)

namespace {

bool allOperationsSupported(io_uring* ring) {
    io_uring_probe* probe = io_uring_get_probe_ring(ring);
    if (!probe) return false;
    bool all = true;
    for (int op : {IORING_OP_OPENAT, IORING_OP_STATX, IORING_OP_READ, IORING_OP_FADVISE, IORING_OP_CLOSE})
        all = all && io_uring_opcode_supported(probe, op);
    io_uring_free_probe(probe);
    return all;
}

}  // namespace

struct BatchedFirstPages::Ring {
    io_uring ring;
    unsigned prepared = 0;
    int fd[kMaxBatch];
    ssize_t got[kMaxBatch];
    bool cached[kMaxBatch];
    struct statx stx[kMaxBatch];
    alignas(4096) unsigned char pages[kMaxBatch][algorithm::kFirstPageSize];

    // A round prepares at most three entries per file, within the ring's size.
    io_uring_sqe* next(size_t index, unsigned flags = 0) {
        io_uring_sqe* sqe = io_uring_get_sqe(&ring);
        io_uring_sqe_set_data64(sqe, index);
        io_uring_sqe_set_flags(sqe, flags);
        ++prepared;
        return sqe;
    }

    // Submits the round and hands each completion (index, result) to `take`.
    template <typename Take>
    void complete(Take take) {
        unsigned waiting = prepared;
        prepared = 0;
        if (waiting == 0) return;
        io_uring_submit_and_wait(&ring, waiting);
        while (waiting > 0) {
            io_uring_cqe* cqe = nullptr;
            if (io_uring_wait_cqe(&ring, &cqe) != 0) continue;
            take(size_t(io_uring_cqe_get_data64(cqe)), cqe->res);
            io_uring_cqe_seen(&ring, cqe);
            --waiting;
        }
    }
};

BatchedFirstPages::BatchedFirstPages(DescriptorBudget& budget) : m_budget(budget) {
    const char* disabled = getenv("VELMORA_NO_IO_URING");
    if ((disabled && *disabled && strcmp(disabled, "0") != 0) || !budget.tryTake(1)) return;
    auto ring = std::make_unique<Ring>();
    if (io_uring_queue_init(4 * kMaxBatch, &ring->ring, 0) != 0) {
        budget.giveBack(1);
        return;
    }
    if (!allOperationsSupported(&ring->ring)) {
        io_uring_queue_exit(&ring->ring);
        budget.giveBack(1);
        return;
    }
    m_ring = std::move(ring);
}

BatchedFirstPages::~BatchedFirstPages() {
    if (!m_ring) return;
    io_uring_queue_exit(&m_ring->ring);
    m_budget.giveBack(1);
}

// Four rounds of one system call each: open all; check all; read all that
// are the files listed, from the page cache only and without read-ahead;
// then read from the disk what was not cached, and close (after dropping
// what was not cached) what is not kept open.
void BatchedFirstPages::read(Request* requests, size_t count) {
    Ring& r = *m_ring;
    for (size_t i = 0; i < count; ++i) {
        r.fd[i] = -1;
        requests[i].outcome = Outcome::NotTried;
        if (requests[i].path.size() >= PATH_MAX) continue;
        io_uring_prep_openat(r.next(i), AT_FDCWD, requests[i].path.constData(),
                             O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0);
    }
    r.complete([&](size_t i, int res) {
        if (res >= 0) r.fd[i] = res;
        // Short of descriptors for a moment: the one-by-one path waits for them.
        else if (res != -EMFILE && res != -ENFILE) requests[i].outcome = Outcome::Failed;
    });

    for (size_t i = 0; i < count; ++i)
        if (r.fd[i] >= 0)
            io_uring_prep_statx(r.next(i), r.fd[i], "", AT_EMPTY_PATH, STATX_TYPE | STATX_INO, &r.stx[i]);
    r.complete([&](size_t i, int res) {
        const struct statx& st = r.stx[i];
        const FileIdentity& listed = requests[i].listed;
        const bool isListed = res == 0 && S_ISREG(st.stx_mode) &&
                              (listed.inode == 0 || (makedev(st.stx_dev_major, st.stx_dev_minor) == listed.device &&
                                                     st.stx_ino == listed.inode));
        if (!isListed) requests[i].outcome = Outcome::Failed;
    });

    for (size_t i = 0; i < count; ++i) {
        if (r.fd[i] < 0 || requests[i].outcome == Outcome::Failed) continue;
        memset(r.pages[i], 0, algorithm::kFirstPageSize);
        io_uring_prep_fadvise(r.next(i, IOSQE_IO_HARDLINK), r.fd[i], 0, 0, POSIX_FADV_RANDOM);
        io_uring_sqe* read = r.next(i | (size_t(1) << 32));
        io_uring_prep_read(read, r.fd[i], r.pages[i], algorithm::kFirstPageSize, 0);
        read->rw_flags = RWF_NOWAIT;
    }
    r.complete([&](size_t tagged, int res) {
        if (!(tagged >> 32)) return;  // the read-ahead advice
        const size_t i = tagged & 0xffffffffu;
        r.cached[i] = res != -EAGAIN;
        r.got[i] = res;
    });

    for (size_t i = 0; i < count; ++i) {
        if (r.fd[i] < 0) continue;
        const bool reading = requests[i].outcome != Outcome::Failed;
        if (reading && !r.cached[i])
            io_uring_prep_read(r.next(i | (size_t(1) << 32), IOSQE_IO_HARDLINK), r.fd[i], r.pages[i],
                               algorithm::kFirstPageSize, 0);
        if (reading && requests[i].keepOpen) continue;
        if (reading && !r.cached[i])
            io_uring_prep_fadvise(r.next(i, IOSQE_IO_HARDLINK), r.fd[i], 0, off_t(algorithm::kFirstPageSize),
                                  POSIX_FADV_DONTNEED);
        io_uring_prep_close(r.next(i | (size_t(2) << 32)), r.fd[i]);
    }
    r.complete([&](size_t tagged, int res) {
        const size_t i = tagged & 0xffffffffu;
        if ((tagged >> 32) == 1) r.got[i] = res;
        if ((tagged >> 32) == 2 && res < 0) ::close(r.fd[i]);  // not closed by the ring
    });

    for (size_t i = 0; i < count; ++i) {
        Request& request = requests[i];
        if (r.fd[i] < 0 || request.outcome == Outcome::Failed) continue;
        if (r.got[i] < 0) {
            request.outcome = Outcome::Failed;
            if (request.keepOpen) ::close(r.fd[i]);
            continue;
        }
        OpenedFile& file = *request.file;
        if (request.keepOpen) file.adopt(r.fd[i]);
        file.firstBlockWasCached = r.cached[i];
        algorithm::fingerprintFirstPage(r.pages[i], r.got[i], *request.out, file);
        request.outcome = Outcome::Read;
    }
}

#else

struct BatchedFirstPages::Ring {};

BatchedFirstPages::BatchedFirstPages(DescriptorBudget& budget) : m_budget(budget) {}
BatchedFirstPages::~BatchedFirstPages() = default;
void BatchedFirstPages::read(Request*, size_t) {}

#endif

}  // namespace velmora
