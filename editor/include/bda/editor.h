/*
 * The library of an instrument, its messages and the wire to it, for C and for whatever can call C.
 *
 * Answers that have a structure are JSON, the same objects as the program `bda` prints with --json (docs/json.md), one
 * on each line, byte for byte. Addresses and places are written as on its command line: "voice:user1:6",
 * "voice:user1:1..16", "voice:user1", "0E 0A 05".
 *
 * Text is UTF-8 and ends with a NUL; text that is none is answered with BDA_UNUSABLE. What a function hands out through
 * a pointer to a pointer belongs to the caller, who gives it to bda_free(); where a function fails it is NULL. What it
 * returns as `const char*` belongs to the library and is valid until the next call with the same handle.
 *
 * A handle is used by one thread at a time; different handles may be used side by side. No function throws, ends the
 * program, or writes to standard output or error.
 */
#ifndef BDA_EDITOR_H
#define BDA_EDITOR_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#define BDA_EDITOR_API
#else
#define BDA_EDITOR_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* What became of a call. The first four are the exit codes of the program in the same case. */
typedef enum bda_result {
  BDA_OK = 0,
  BDA_FAILED = 1,   /* the system failed: no space, no memory, a library that can no longer be read or written */
  BDA_UNUSABLE = 2, /* what was handed over is no address, no message file, no library, no UTF-8, ... */
  BDA_REFUSED = 3,  /* something is refused, broken, damaged, different, lost or not found: the answer is there */
  BDA_MISUSED = 4   /* a null pointer, or calls in an order that this page does not allow */
} bda_result;

/* The version of the editor library, such as "1.3.0"; it lives as long as the program. */
BDA_EDITOR_API const char* bda_version(void);
/* Gives back what a function has handed out; NULL is allowed. */
BDA_EDITOR_API void bda_free(void* memory);

/* ---- The library --------------------------------------------------------------------------------------------- */

typedef struct bda_library bda_library;

enum {
  BDA_OPEN_READ = 1 /* it must exist; nothing is written */
};

/*
 * Opens a library, and stores the handle in *library: also where that fails, so that bda_library_error() can say why;
 * every other function answers BDA_MISUSED then. NULL only when there is no memory for one. Whatever became of it, it is
 * closed by bda_library_close().
 *
 * `path`: the file; one that does not exist is made by the first change. NULL: a new library in memory, gone with its
 * handle. `flags`: 0 or BDA_OPEN_READ.
 */
BDA_EDITOR_API bda_result bda_library_open(const char* path, unsigned flags, bda_library** library);
/* NULL is allowed. */
BDA_EDITOR_API void bda_library_close(bda_library* library);
/* What was wrong with the last call that was not BDA_OK, in words; "" when none was. */
BDA_EDITOR_API const char* bda_library_error(const bda_library* library);

/* What it holds, as `bda contents --json` says it: everything, or with `places` those of a place, a bank or a range. */
BDA_EDITOR_API bda_result bda_library_contents(bda_library* library, const char* places, char** json);
/* The parameters of `places`, as `bda show --json` says them; "system" and "additional" are places too. */
BDA_EDITOR_API bda_result bda_library_show(bda_library* library, const char* places, char** json);

/* ---- Messages ------------------------------------------------------------------------------------------------ */

/* Gets a message F0 to F7 that the instrument sends, and its port: 1, 4, 5 or 6. The bytes live as long as the call,
   which uses no handle that is just being used. */
typedef void (*bda_send)(void* context, unsigned port, const uint8_t* message, size_t size);

/*
 * Hands a message F0 to F7 to the instrument, as if it had come on that port (1 is the main one). What it stores is on
 * disk when this returns. `send` gets what it sends for that, NULL: nobody. `json`: what became of it, as a line of the
 * trace (docs/trace.md); may be NULL.
 *
 * BDA_REFUSED where the instrument refuses the message, or the message is broken; BDA_FAILED where the library failed:
 * the message has changed nothing then.
 */
BDA_EDITOR_API bda_result bda_library_handle(bda_library* library, unsigned port, const uint8_t* message, size_t size,
                                             bda_send send, void* context, char** json);
/*
 * Asks for `places`, as `bda request` does: `send` gets what the instrument answers. BDA_REFUSED where some place is not
 * answered, for nothing is stored there.
 */
BDA_EDITOR_API bda_result bda_library_request(bda_library* library, const char* places, bda_send send, void* context);

/*
 * Judges the messages and units of a file (.syx, .mid, .rmi or hex text), as `bda verify --json` does. `name` stands in
 * the answer as the file's. BDA_REFUSED where something is broken: `json` has all of it. BDA_UNUSABLE where it is no
 * such file. `error` gets what was wrong, in words, or NULL; it may be NULL itself.
 */
BDA_EDITOR_API bda_result bda_verify(const uint8_t* file, size_t size, const char* name, char** json, char** error);

#ifdef __cplusplus
}
#endif

#endif
