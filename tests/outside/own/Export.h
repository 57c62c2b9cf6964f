#pragma once

// An editor's own header of a common name; none of libbda's may take it for its own.
#define EDITOR_INTERNAL static
