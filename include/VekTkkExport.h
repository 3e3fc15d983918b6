#ifndef VEKTKK_EXPORT_H
#define VEKTKK_EXPORT_H

/* Everything is built with hidden visibility; only what carries VEKTKK_API
 * is part of the library's binary interface. */
#if defined(__GNUC__) || defined(__clang__)
#define VEKTKK_API __attribute__((visibility("default")))
#else
#define VEKTKK_API
#endif

#endif /* VEKTKK_EXPORT_H */
