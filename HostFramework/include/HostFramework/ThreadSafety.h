// What guards what, said so that clang's -Wthread-safety checks it; other compilers see nothing.
#pragma once

#if defined(__clang__)
#define SF_ATTRIBUTE(attribute) __attribute__((attribute))
#else
#define SF_ATTRIBUTE(attribute)
#endif

// A class whose objects are held by threads: a mutex, or the role of a thread.
#define SF_CAPABILITY(name) SF_ATTRIBUTE(capability(name))
// A class whose objects hold a capability as long as they live.
#define SF_SCOPED_CAPABILITY SF_ATTRIBUTE(scoped_lockable)

// A member that is touched only while the capability is held; what a pointer points at.
#define SF_GUARDED_BY(capability) SF_ATTRIBUTE(guarded_by(capability))
#define SF_PT_GUARDED_BY(capability) SF_ATTRIBUTE(pt_guarded_by(capability))

// A function whose callers hold the capability, or must not.
#define SF_REQUIRES(...) SF_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define SF_EXCLUDES(...) SF_ATTRIBUTE(locks_excluded(__VA_ARGS__))

// A function that takes or gives back the capability; on success only, where it returns `value`.
#define SF_ACQUIRE(...) SF_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define SF_RELEASE(...) SF_ATTRIBUTE(release_capability(__VA_ARGS__))
#define SF_TRY_ACQUIRE(value, ...) SF_ATTRIBUTE(try_acquire_capability(value, __VA_ARGS__))

// A function that tells the checker that the capability is held, which it cannot see: the thread
// that calls it is the one whose role it is.
#define SF_ASSERT_CAPABILITY(capability) SF_ATTRIBUTE(assert_capability(capability))
// A function that returns a reference to the capability.
#define SF_RETURN_CAPABILITY(capability) SF_ATTRIBUTE(lock_returned(capability))

// A function that is right for a reason that the checker cannot follow; its comment says which.
#define SF_NO_THREAD_SAFETY_ANALYSIS SF_ATTRIBUTE(no_thread_safety_analysis)
