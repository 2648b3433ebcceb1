#ifndef MDF_FRAMEWORK_EXPORT_H_
#define MDF_FRAMEWORK_EXPORT_H_

/// Marks what programs may call. The build of the shared library hides all else and says so by
/// MDF_BUILDS_SHARED_LIBRARY; everywhere else the mark is nothing.
#ifdef MDF_BUILDS_SHARED_LIBRARY
#define MDF_EXPORT [[gnu::visibility("default")]]
#else
#define MDF_EXPORT
#endif

#endif  // MDF_FRAMEWORK_EXPORT_H_
