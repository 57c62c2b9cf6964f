/*
 * The library of an instrument, its messages and the wire to it, for C and for whatever can call C.
 *
 * docs/c.md shows each function in use, and has the tables of options and results.
 *
 * Answers that have a structure are JSON: the same objects as the program `bda` prints with --json (docs/json.md), one
 * on each line, byte for byte; where the program names a library or a file, they have the path or name that was given.
 * Objects may get members more in later versions. Addresses and places are written as on its command line:
 * "voice:user1:6", "voice:user1:1..16", "voice:user1", "0E 0A 05" (three words of two digits each are one address);
 * several with a blank between them. Options are one JSON object, whose members have the long names of the program's
 * options, and their ranges: {"kind": "voice", "where": ["voice.common[3]>64"]}; NULL: none.
 *
 * Text is UTF-8 and ends with a NUL; text that is none is answered with BDA_UNUSABLE, but a path is what the system
 * takes for one. What a function hands out through a pointer to a pointer belongs to the caller, who gives it to
 * bda_free(). Each call sets it first, to NULL; with BDA_OK there is an answer, which may be "" or of no bytes, with
 * BDA_REFUSED where the function says so or where a part of what was asked for is refused. Such a pointer may be NULL
 * itself when nobody wants the answer. What a function returns as `const char*` belongs to the library and is valid
 * until the next call with the same handle.
 *
 * A handle may be used by any thread, by one at a time, its error included; different handles may be used side by side,
 * two of one library file too: one of them waits up to five seconds while the other changes it, and then answers
 * BDA_FAILED; each call sees what was last on disk. A handle that was made of another does not need it any longer,
 * where nothing else is said. A function that is called back must not use the handle that calls it, and must not throw.
 * No function throws, ends the program, or writes to standard output or error.
 */
#ifndef BDA_EDITOR_H
#define BDA_EDITOR_H

/* NOLINTBEGIN(modernize-deprecated-headers,modernize-use-using): this is C */

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#define BDA_EDITOR_API __attribute__((visibility("default")))
#else
#define BDA_EDITOR_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* What became of a call. The first four are the exit codes of the program in the same case. All but BDA_OK come with
   words: bda_library_error() and its like. */
typedef enum bda_result {
  BDA_OK = 0,
  BDA_FAILED = 1,   /* the system failed: no space, no memory, a library that can no longer be read or written */
  BDA_UNUSABLE = 2, /* what was handed over is no address, no message file, no library, no UTF-8, ... */
  BDA_REFUSED = 3,  /* something is refused, broken, damaged, different, lost or not found; of what is changed all at
                       once nothing is */
  BDA_MISUSED = 4   /* a null pointer, or calls in an order that this page does not allow */
} bda_result;

/* The version of the editor library, such as "1.3.0"; it lives as long as the program. */
BDA_EDITOR_API const char* bda_version(void);
/* Gives back what a function has handed out; NULL is allowed. */
BDA_EDITOR_API void bda_free(void* memory);
/* The banks of contents that an instrument has, in their order, a line for each:
   {"bank":"voice:user1","kind":"voice","first":"voice:user1:1","last":"voice:user1:128","places":128}. A content that
   has no number is a bank of itself: "drum:gm". BDA_FAILED where there is no memory; `json` must not be NULL. */
BDA_EDITOR_API bda_result bda_places(char** json);

/* Gets a System Exclusive message F0 to F7, and the port on which it goes out: 1, 4, 5 or 6. The bytes live as long as
   the call. */
typedef void (*bda_send)(void* context, unsigned port, const uint8_t* message, size_t size);

/* ---- Files of messages --------------------------------------------------------------------------------------------
 *
 * One or more files in memory: .syx, .mid, .rmi, or text of hex digits. Messages are numbered through all of them.
 */

typedef struct bda_files bda_files;

/* BDA_FAILED only where there is no memory for a handle. */
BDA_EDITOR_API bda_result bda_files_new(bda_files** files);
/* NULL is allowed. */
BDA_EDITOR_API void bda_files_close(bda_files* files);
/* What was wrong with the last call, in words, a line for each; "" when it was BDA_OK. */
BDA_EDITOR_API const char* bda_files_error(const bda_files* files);

/* Adds a file, which is copied. `name` is what answers call it. BDA_UNUSABLE for what is no file of messages: it is not
   added, and the error says what it seems to be. */
BDA_EDITOR_API bda_result bda_files_add(bda_files* files, const char* name, const uint8_t* bytes, size_t size);

/* As bda_library_name_parameters(), for bda_files_explain(). */
BDA_EDITOR_API bda_result bda_files_name_parameters(bda_files* files, const char* names);

/* Gets each message, its number from 1, and the offset of its F0 in its file: of a Standard MIDI File that of the
   event, of a text that of its first digit. A message that is cut short is none; bda_files_list() tells it. The bytes
   live as long as the call. BDA_REFUSED, when all were visited, where one is cut short or a file broken. */
typedef void (*bda_visit)(void* context, uint64_t number, uint64_t offset, const uint8_t* message, size_t size);
BDA_EDITOR_API bda_result bda_files_each(bda_files* files, bda_visit visit, void* context);

/* Each message, as `bda list --json`. BDA_REFUSED, with the answer, where one is broken or bytes of the files belong to
   none. */
BDA_EDITOR_API bda_result bda_files_list(bda_files* files, char** json);
/* Each message and each unit, as `bda verify --json`. BDA_REFUSED, with the answer, where something is broken. */
BDA_EDITOR_API bda_result bda_files_verify(bda_files* files, char** json);
/* What the bytes of a file are, `count` of them from `offset` on, or fewer when it ends; `file` counts from 0. As
   `bda explain FILE --json`, which has all of them: of a text each that it writes, at the offset of its first digit.
   BDA_REFUSED, with the answer, where the structure of the file is broken. */
BDA_EDITOR_API bda_result bda_files_explain(bda_files* files, size_t file, uint64_t offset, uint64_t count,
                                            char** json);
/* What is whole, as a backup has it, and requests for what is lost, as `bda salvage --json`. Options: "prefer" (the
   name of a file), "merge", "fix-checksums". BDA_REFUSED, with the answer, where something is lost. */
BDA_EDITOR_API bda_result bda_files_salvage(bda_files* files, const char* options, uint8_t** whole, size_t* wholeSize,
                                            uint8_t** requests, size_t* requestsSize, char** json);
/* The same messages in another form or to other places, as `bda convert -o - --json`. Options: "format" ("syx", "mid"
   or "txt", else "syx"), "place", "select" (addresses), "device" (1 to 16), "pause" (milliseconds, for "mid" only).
   BDA_REFUSED where a message is cut short, with "place" or "select" where something is broken, missing or carried by
   no message; without an answer where nothing can be written. */
BDA_EDITOR_API bda_result bda_files_convert(bda_files* files, const char* options, uint8_t** bytes, size_t* size,
                                            char** json);

/* ---- The library --------------------------------------------------------------------------------------------- */

typedef struct bda_library bda_library;

enum {
  BDA_OPEN_READ = 1 /* it must exist; nothing is written: what would change it is BDA_REFUSED */
};

/*
 * Opens a library, and stores the handle in *library: also where that fails, so that bda_library_error() can say why;
 * every other function answers BDA_MISUSED then. NULL only when there is no memory for one. Whatever became of it, it
 * is closed by bda_library_close().
 *
 * `path`: the file; one that does not exist is made by the first change. NULL: a new library in memory, gone with its
 * handle. `flags`: 0 or BDA_OPEN_READ.
 */
BDA_EDITOR_API bda_result bda_library_open(const char* path, unsigned flags, bda_library** library);
/* A copy in memory: what is changed there tells what the same call would do, and changes nothing. Without one *clone is
   NULL, and the error is that of `library`. */
BDA_EDITOR_API bda_result bda_library_clone(bda_library* library, bda_library** clone);
/* A library in memory that has received all dumps of the files, whatever device they are for. BDA_REFUSED, with a
   handle, where something was refused or broken: bda_files_error() says what, the rest is there. What was never
   received is not there, edit buffers and system settings too. */
BDA_EDITOR_API bda_result bda_library_of_files(bda_files* files, bda_library** library);
/* NULL is allowed. */
BDA_EDITOR_API void bda_library_close(bda_library* library);
/* What was wrong with the last call, in words, a line for each; "" when it was BDA_OK. */
BDA_EDITOR_API const char* bda_library_error(const bda_library* library);

/* Parameters and values have these names from now on, in answers and in what is asked: the text of a file of names
   (docs/program.md). NULL: none. */
BDA_EDITOR_API bda_result bda_library_name_parameters(bda_library* library, const char* names);

/* What it holds, as `bda contents --json`: everything with NULL, or those of `places`. */
BDA_EDITOR_API bda_result bda_library_contents(bda_library* library, const char* places, char** json);
/* The parameters of `places`, as `bda show --json`; "system" and "additional" are places too. */
BDA_EDITOR_API bda_result bda_library_show(bda_library* library, const char* places, char** json);
/* Contents by what is asked of them, as `bda find --json`. Options: "terms" (name patterns), "kind", "where"
   (conditions), "favourite", "same-as", "like", "duplicates", "edit-buffers". BDA_REFUSED where nothing is found. The
   source is the path as it was opened, "memory" without one. */
BDA_EDITOR_API bda_result bda_library_find(bda_library* library, const char* options, char** json);
/* What two libraries do not have in common, as `bda diff --json`. BDA_REFUSED where they differ. Nobody else uses the
   other one meanwhile. What no message carries is not compared with a library of files. */
BDA_EDITOR_API bda_result bda_library_diff(bda_library* library, bda_library* other, char** json);
/* The data bytes that carry a parameter, as `bda explain ADDRESS PATH --json`. */
BDA_EDITOR_API bda_result bda_library_explain(bda_library* library, const char* place, const char* path, char** json);
/* Whether everything in it can be read, as `bda check --json`. BDA_REFUSED where something is damaged. */
BDA_EDITOR_API bda_result bda_library_check(bda_library* library, char** json);
/* The newest entries of its history, as `bda history --json`; 0: all of them. */
BDA_EDITOR_API bda_result bda_library_history(bda_library* library, size_t most, char** json);
/* Its settings, as `bda settings --json`; with `name` one of them. */
BDA_EDITOR_API bda_result bda_library_settings(bda_library* library, const char* name, char** json);
/* The whole of it as messages, as `bda backup` writes them, and its manifest, as --manifest. BDA_REFUSED where
   something is not in the backup: the error says what, and there is an answer unless nothing is. BDA_UNUSABLE while a
   library in a file is not made yet. Of a library of files system settings and favourite flags are in it as new where
   the files have none. */
BDA_EDITOR_API bda_result bda_library_backup(bda_library* library, uint8_t** bytes, size_t* size, char** manifest);

/*
 * Changes. Each is one entry of the history and on disk when its function returns, or nothing is changed. `json` gets
 * what has changed, as the program's verb of that name prints it with --json; nothing where all was so before.
 * Messages that are handed over one after the other, without any of these calls and no longer than a minute between,
 * are one entry, of the verb `receive`.
 */

/* The number of that entry, of the last of these calls with this handle, for bda_library_undo(); 0: it has changed
   nothing. */
BDA_EDITOR_API int64_t bda_library_entry(const bda_library* library);

/* Replaces a whole target by an object that bda_library_show() printed. */
BDA_EDITOR_API bda_result bda_library_apply(bda_library* library, const char* place, const char* object, char** json);
/* Gives a content or an edit buffer another name. */
BDA_EDITOR_API bda_result bda_library_rename(bda_library* library, const char* place, const char* name, char** json);
/* Makes voices favourites (`on` not 0), or no longer. */
BDA_EDITOR_API bda_result bda_library_favourite(bda_library* library, const char* places, int on, char** json);
/* What `from` holds, to `to`: a place, a bank or a range each. What is damaged stays where it is, and the rest goes:
   BDA_REFUSED with an answer, and the error says what was left. */
BDA_EDITOR_API bda_result bda_library_copy_places(bda_library* library, const char* from, const char* to, char** json);
BDA_EDITOR_API bda_result bda_library_move_places(bda_library* library, const char* from, const char* to, char** json);
BDA_EDITOR_API bda_result bda_library_swap_places(bda_library* library, const char* from, const char* to, char** json);
BDA_EDITOR_API bda_result bda_library_remove(bda_library* library, const char* places, char** json);
/* Takes an entry of the history back; 0: the newest that is neither undone nor an undo, whoever made it. `force`: also
   where places changed since, which is BDA_REFUSED else; the error names them. */
BDA_EDITOR_API bda_result bda_library_undo(bda_library* library, int64_t entry, int force, char** json);
/* Sets a setting: "device-number", "6". */
BDA_EDITOR_API bda_result bda_library_set(bda_library* library, const char* name, const char* value, char** json);
/* Receives all dumps of the files, or none of them where one is broken or refused, or where messages that were handed
   over have begun a unit that is still open. BDA_UNUSABLE where none is for this instrument. Option: "any-device". */
BDA_EDITOR_API bda_result bda_library_restore(bda_library* library, bda_files* files, const char* options, char** json);

/*
 * Hands a message F0 to F7 to the instrument, as if it had come on that port (1 is the main one). What it stores is on
 * disk when this returns. `send` gets what it sends for that, NULL: nobody. `json`: what became of it, as a line of the
 * trace (docs/trace.md), also when that is none of BDA_OK; not of a dump for a library that was opened to be read.
 *
 * BDA_REFUSED where the instrument refuses the message, or the message is broken; BDA_FAILED where the library failed:
 * the message has changed nothing then.
 */
BDA_EDITOR_API bda_result bda_library_handle(bda_library* library, unsigned port, const uint8_t* message, size_t size,
                                             bda_send send, void* context, char** json);
/*
 * Asks for `places`, as `bda request` does: `send` gets what the instrument answers. BDA_REFUSED where some place is
 * not answered, for nothing is stored there.
 */
BDA_EDITOR_API bda_result bda_library_request(bda_library* library, const char* places, bda_send send, void* context);

/* ---- A stream of bytes --------------------------------------------------------------------------------------------
 *
 * Cuts what arrives, in pieces of any size, into messages F0 to F7. Every byte is part of a message or told as lost.
 */

typedef struct bda_joiner bda_joiner;

/* Bytes that became no message: the first at `offset` of the stream, how many, and why, in words that live for ever.
   Clock and other real-time bytes are among them. Neighbours of one reason come as one run, when it has ended. */
typedef void (*bda_drop)(void* context, uint64_t offset, uint64_t count, const char* reason);

/* `message` gets each message, its number from 1 and its offset in the stream; `drop` may be NULL. */
BDA_EDITOR_API bda_result bda_joiner_new(bda_visit message, bda_drop drop, void* context, bda_joiner** joiner);
BDA_EDITOR_API bda_result bda_joiner_feed(bda_joiner* joiner, const uint8_t* bytes, size_t size);
/* The stream ends: what had begun is told as lost. One that is fed afterwards begins anew, its offsets go on. */
BDA_EDITOR_API bda_result bda_joiner_finish(bda_joiner* joiner);
/* NULL is allowed. */
BDA_EDITOR_API void bda_joiner_close(bda_joiner* joiner);

/* ---- A wire -------------------------------------------------------------------------------------------------------
 *
 * What goes on at this end of a cable. It never waits, and knows no time but what it is told: its owner hands it what
 * arrives and the time, and asks it what goes out and when it wants to be called next. Times are microseconds since any
 * moment, and never go back; those that would are taken as the last.
 *
 *   for (;;) {
 *     if (bda_wire_tick(wire, clock_now(), send_bytes, port, &due) != BDA_OK) complain(bda_wire_error(wire));
 *     bda_wire_results(wire, &json);
 *     show(json);
 *     bda_free(json);
 *     if (bda_wire_is_done(wire)) break;
 *     size = read_until(port, due, bytes, sizeof bytes); // waits for the first of: bytes, room to send, `due`
 *     if (size > 0) bda_wire_feed(wire, clock_now(), bytes, size);
 *   }
 *
 * It is ticked after all that was fed, when it is `due`, and when the port takes bytes again that it did not take. When
 * a call fails it is done: bda_wire_results() has a line for each unit that was decided, and its error says of the rest
 * what was begun and not finished, not sent, or not asked for.
 *
 * Options of all of them: "pace" ("cable", "usb", "none", or bytes a second; else "cable"), "pause" and "unit-pause"
 * (milliseconds), "whole-messages" (for ports that take no pieces of them).
 */

typedef struct bda_wire bda_wire;

/* Takes as many bytes as go without waiting, and answers how many; less than 0: the port is gone. The bytes live as
   long as the call. */
typedef ptrdiff_t (*bda_bytes_out)(void* context, const uint8_t* bytes, size_t size);

#define BDA_NEVER INT64_MAX /* as a time: only when bytes arrive */

/*
 * Each stores a handle in *wire, also where it fails, as bda_library_open() does: then it is done, and every other
 * function but bda_wire_error() answers BDA_MISUSED. What fails has sent nothing. The library of bda_wire_fetch() and
 * of bda_wire_instrument() is changed by the thread that ticks and feeds, and whatever else is called with its handle
 * is answered with BDA_MISUSED until the wire is closed; bda_library_close() may be called before. A unit that came
 * whole is on disk when its line is there.
 */

/* Asks an instrument for `places` ("all": everything that can be requested), at the device number that its settings
   have, and stores what comes whole; results as of `bda fetch --json`. Options: "timeout" (seconds), "retries",
   "atomic" (all or nothing, with results at the end only), "remove-empty". */
BDA_EDITOR_API bda_result bda_wire_fetch(bda_library* library, const char* places, const char* options,
                                         bda_wire** wire);
/* Sends what the library holds now at `places` to an instrument; results as of `bda send --json`. The first ones say in
   their error which places hold nothing; the rest goes. Options: "to-edit-buffer", "verify", "changed", "timeout"
   (seconds), "retries". */
BDA_EDITOR_API bda_result bda_wire_send(bda_library* library, const char* places, const char* options, bda_wire** wire);
/* Sends the dumps of files, to the device that they are for; the same options. BDA_REFUSED where one is broken. */
BDA_EDITOR_API bda_result bda_wire_send_files(bda_files* files, const char* options, bda_wire** wire);
/* The library is the instrument at this end; results as of `bda instrument --json`, their "file" is null. Options:
   "faults", "seed", "port", "echo". It is done when it was stopped and all that it has to send is out. */
BDA_EDITOR_API bda_result bda_wire_instrument(bda_library* library, const char* options, bda_wire** wire);

/* NULL is allowed. What was not decided is lost; stop it before, and results say so. */
BDA_EDITOR_API void bda_wire_close(bda_wire* wire);
/* As bda_library_error(). */
BDA_EDITOR_API const char* bda_wire_error(const bda_wire* wire);
/* What it will do at the other end, in words, a line for each: what sending overwrites and removes there, and what is
   left out, as `bda send` says it before it begins. Nothing goes out before the first tick: who does not want that
   closes it. */
BDA_EDITOR_API bda_result bda_wire_effects(bda_wire* wire, char** lines);
/* How far it has come: {"done":3,"units":128,"sent":4711,"bytes":90000,"seconds":28.8}. `done` of `units` have had
   their results, `sent` bytes have gone out; sending takes `bytes` and `seconds` if nothing is left out, without
   asking. null: nobody knows. */
BDA_EDITOR_API bda_result bda_wire_progress(bda_wire* wire, char** json);

/* Bytes have arrived, cut anywhere; none: time has passed. BDA_FAILED where the library failed: it is done then. What
   arrives when it is done is not heard. */
BDA_EDITOR_API bda_result bda_wire_feed(bda_wire* wire, int64_t now, const uint8_t* bytes, size_t size);
/* The time has come: `out` gets what goes out now, `due` (or NULL) when to call again, whatever arrives until then.
   BDA_FAILED where the library failed, the port is gone, or `out` has taken nothing for longer than an answer may take:
   it is done then. When it is done `due` is BDA_NEVER. */
BDA_EDITOR_API bda_result bda_wire_tick(bda_wire* wire, int64_t now, bda_bytes_out out, void* context, int64_t* due);
/* Ends it early: what has begun to go out goes out to its end, with further ticks, then it is done. Of what was not
   asked for or sent there is no line. */
BDA_EDITOR_API bda_result bda_wire_stop(bda_wire* wire);
/* 1: all is done, and everything sent; 0 else, and for NULL 1. */
BDA_EDITOR_API int bda_wire_is_done(const bda_wire* wire);
/* What became known since the last call, a line for each unit or message; it is told once, and lost where `json` is
   NULL. BDA_REFUSED, with the answer, where something of it is lost, different, unanswered or refused, or was not asked
   for or sent before the end. */
BDA_EDITOR_API bda_result bda_wire_results(bda_wire* wire, char** json);

#ifdef __cplusplus
}
#endif

/* NOLINTEND(modernize-deprecated-headers,modernize-use-using) */

#endif
