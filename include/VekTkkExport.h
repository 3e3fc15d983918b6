#ifndef VEKTKK_EXPORT_H
#define VEKTKK_EXPORT_H

/* Everything is built with hidden visibility; only what carries VEKTKK_API
 * is part of the library's binary interface. VEKTKK_LOCAL keeps a private
 * member of an exported class out of it. A linker version script lists the
 * same names again (src/libvektkk.map). */
#if defined(__GNUC__) || defined(__clang__)
#define VEKTKK_API __attribute__((visibility("default")))
#define VEKTKK_LOCAL __attribute__((visibility("hidden")))
#else
#define VEKTKK_API
#define VEKTKK_LOCAL
#endif

#endif /* VEKTKK_EXPORT_H */
