"""What the C headers say. They lie beside this file; nothing of them is written down a second time."""

import re
from pathlib import Path

_HERE = Path(__file__).parent


def declarations() -> str:
    """The types and functions of editor.h, for cffi: without comments, directives and what is for C++ alone."""
    text = (_HERE / "editor.h").read_text(encoding="utf-8")
    text = re.sub(r"/\*.*?\*/", "", text, flags=re.DOTALL)
    text = re.sub(r"#ifdef __cplusplus\n.*?\n#endif\n", "", text, flags=re.DOTALL)
    text = re.sub(r"^#.*\n", "", text, flags=re.MULTILINE)
    return text.replace("BDA_EDITOR_API ", "")


def version() -> str:
    """The version of library and package, such as "1.3.0"."""
    text = (_HERE / "version.h").read_text(encoding="utf-8")
    return ".".join(re.findall(r"^#define BDA_VERSION_(?:MAJOR|MINOR|PATCH) (\d+)$", text, flags=re.MULTILINE))


def soversion() -> str:
    """The version that libraries of one ABI share: while the first number is 0 the first two, "0.2"."""
    return version().rpartition(".")[0]
