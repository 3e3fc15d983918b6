#ifndef VEKTKK_SRC_FOUNDATION_LOGEVENTO_H
#define VEKTKK_SRC_FOUNDATION_LOGEVENTO_H

// The library's only reporting channel: one record in the host's event log
// per call. Internal to the library; never exported.

// The four severities in use, each a fixed pair of syslog priority and word.
struct SeveritaEvento {
  int Priorita;
  const char* Parola;
};
constexpr SeveritaEvento kAlert{1, "ALERT"};
constexpr SeveritaEvento kError{3, "ERROR"};
constexpr SeveritaEvento kNotice{5, "NOTICE"};
constexpr SeveritaEvento kInfo{6, "INFO"};

// Formats the message (printf style, cut to 1023 characters) and logs it with
// the tags "test:tag"='value' and "msg"=message, under the host's mutex. Does
// nothing when the host defines no mutex; drops the record when the host's
// context is null. Never fails and never changes a caller's result.
void LogEvento(int priorita, const char* severita, const char* formato, ...)
    __attribute__((format(printf, 3, 4)));

#endif  // VEKTKK_SRC_FOUNDATION_LOGEVENTO_H
