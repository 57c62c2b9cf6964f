/* What the examples need besides the library. */
#ifndef SUPPORT_H
#define SUPPORT_H

#include <stddef.h>
#include <stdint.h>

/* Ends the program with 1, with these words, when it is not so. */
void expect(int is_so, const char* words);
/* As expect(): `text` has `part` in it. Programs that do more than look for one thing read the lines as JSON. */
void expect_in(const char* text, const char* part);
/* How many lines, each with its line end; none of NULL. */
size_t lines_in(const char* text);
/* The bytes of a file, which belong to the caller: free(). */
uint8_t* read_file(const char* path, size_t* size);

#endif
