#pragma once

/// Marks what the library offers to its host. Everything else stays inside: the library is built
/// with hidden visibility, so that its internals can't clash with the host's own names.
#if defined(_WIN32)
#if defined(VARN3D_SHARED) && defined(VARN3D_BUILDING)
#define VARN3D_EXPORT __declspec(dllexport)
#elif defined(VARN3D_SHARED)
#define VARN3D_EXPORT __declspec(dllimport)
#else
#define VARN3D_EXPORT
#endif
#else
#define VARN3D_EXPORT __attribute__((visibility("default")))
#endif
