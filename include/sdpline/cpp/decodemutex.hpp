/*
 * decodemutex.hpp: the lock by which decodes take turns, and which none can take twice.
 *
 * Part of sdpline.hpp, whose conventions apply.
 */
#ifndef SDPLINE_CPP_DECODEMUTEX_HPP
#define SDPLINE_CPP_DECODEMUTEX_HPP

#ifndef SDPLINE_THREAD_LOCAL
#if defined(__has_include) && __has_include(<pthread.h>)
#include <pthread.h> /* a tenth of what <mutex> takes to compile */
#else
#include <mutex>
#endif
#endif

#include "sdpline/cpp/result.hpp"

namespace sdpline {
inline namespace v1 {

namespace internal {

/* Whether the calling thread is decoding, or holds the lock. This and the lock have default
 * visibility, so that the dynamic linker merges the copies of all libraries. */
[[gnu::visibility("default")]] inline constinit thread_local bool decodingHere = false;

} // namespace internal

#ifndef SDPLINE_THREAD_LOCAL

/* A mutex for std::scoped_lock and the like that knows whether the calling thread holds it. */
class DecodeMutex {
public:
    constexpr DecodeMutex() = default;
    DecodeMutex(const DecodeMutex &) = delete;
    DecodeMutex &operator=(const DecodeMutex &) = delete;

    /* Waits until no other thread holds it. A thread that already holds it would wait for ever: see
     * isHeldHere. */
    void lock() {
#ifdef PTHREAD_MUTEX_INITIALIZER
        internal::insist(pthread_mutex_lock(&mutex_) == 0);
#else
        mutex_.lock();
#endif
        internal::decodingHere = true;
    }

    bool try_lock() {
#ifdef PTHREAD_MUTEX_INITIALIZER
        const bool taken = pthread_mutex_trylock(&mutex_) == 0;
#else
        const bool taken = !internal::decodingHere && mutex_.try_lock();
#endif
        internal::decodingHere = internal::decodingHere || taken;
        return taken;
    }

    void unlock() {
        internal::decodingHere = false;
#ifdef PTHREAD_MUTEX_INITIALIZER
        pthread_mutex_unlock(&mutex_);
#else
        mutex_.unlock();
#endif
    }

    static bool isHeldHere() {
        return internal::decodingHere;
    }

private:
#ifdef PTHREAD_MUTEX_INITIALIZER
    pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
#else
    std::mutex mutex_;
#endif
};

namespace internal {

[[gnu::visibility("default")]] inline constinit DecodeMutex decoding;

} // namespace internal

/*
 * The lock that is held during every decode of this API. Code that calls the C decoder itself, or
 * calls SdpLibGetLastFailure after it, must hold it too:
 *
 *     std::scoped_lock lock(sdpline::decodeMutex());
 *     SdpLibDecodeSdp(&text, &line);
 *
 * While a thread holds it, for instance in a log hook that a decode calls, decodes of this API fail
 * on that thread with Fault::Busy instead of waiting for ever.
 *
 * A program has one lock, together with the shared libraries that it is linked with. A library that
 * is loaded with local symbols may have another one: then only one of both may decode, or both need
 * a common lock. A program compiled with SDPLINE_THREAD_LOCAL has no lock, since each thread
 * decodes for itself.
 */
inline DecodeMutex &decodeMutex() {
    return internal::decoding;
}

#endif

namespace internal {

/* Holds the lock for one decode, from construction to destruction. */
class DecodeTurn {
public:
    DecodeTurn() : refused_(isDecodingHere()) {
        if (!refused_) {
            take();
        }
    }
    ~DecodeTurn() {
        if (!refused_) {
            release();
        }
    }
    DecodeTurn(const DecodeTurn &) = delete;
    DecodeTurn &operator=(const DecodeTurn &) = delete;

    /* Whether this thread is already decoding: the decoder's state is then in use. */
    bool refused() const { return refused_; }

private:
#ifdef SDPLINE_THREAD_LOCAL
    /* The second test is for a log hook of the C decoder, which holds no lock. */
    static bool isDecodingHere() {
        return decodingHere || g_mSdpDecodeMemCp != nullptr;
    }
    static void take() {
        decodingHere = true;
    }
    static void release() {
        decodingHere = false;
    }
#else
    static bool isDecodingHere() {
        return decodingHere;
    }
    static void take() {
        decoding.lock();
    }
    static void release() {
        decoding.unlock();
    }
#endif

    bool refused_;
};

} // namespace internal

} // namespace v1
} // namespace sdpline

#endif
