"""The shared library: what it declares, where it is, and calls that raise exceptions."""

from __future__ import annotations

import functools
import os
import threading
from pathlib import Path
from typing import Any

import cffi
import pyarrow as pa

from .errors import CannotDecode, MdfError, MissingFile, UnreadableFile, WrongQuery

# The declarations of the library's header, which a test holds against it.
DECLARATIONS = """
struct ArrowSchema {
  const char* format;
  const char* name;
  const char* metadata;
  int64_t flags;
  int64_t n_children;
  struct ArrowSchema** children;
  struct ArrowSchema* dictionary;
  void (*release)(struct ArrowSchema*);
  void* private_data;
};

struct ArrowArray {
  int64_t length;
  int64_t null_count;
  int64_t offset;
  int64_t n_buffers;
  int64_t n_children;
  const void** buffers;
  struct ArrowArray** children;
  struct ArrowArray* dictionary;
  void (*release)(struct ArrowArray*);
  void* private_data;
};

struct ArrowArrayStream {
  int (*get_schema)(struct ArrowArrayStream*, struct ArrowSchema* out);
  int (*get_next)(struct ArrowArrayStream*, struct ArrowArray* out);
  const char* (*get_last_error)(struct ArrowArrayStream*);
  void (*release)(struct ArrowArrayStream*);
  void* private_data;
};

struct mdf_file;

struct mdf_error {
  char code[64];
  uint64_t offset;
  char text[1024];
};

typedef struct mdf_file mdf_file;
typedef struct mdf_error mdf_error;

int mdf_open(const char* path, struct mdf_file** file, struct mdf_error* error);

void mdf_close(struct mdf_file* file);

char* mdf_describe(struct mdf_file* file, struct mdf_error* error);

char* mdf_findings(struct mdf_file* file, struct mdf_error* error);

char* mdf_attachment(struct mdf_file* file, uint64_t index, uint64_t* size,
                     struct mdf_error* error);

void mdf_free(char* text);

int mdf_read(struct mdf_file* file, const char* query, struct ArrowArrayStream* stream,
             struct mdf_error* error);

int mdf_frames(struct mdf_file* file, const char* query, struct ArrowArrayStream* stream,
               struct mdf_error* error);

int mdf_decode(struct mdf_file* file, const char* query, struct mdf_file** signals, char** report,
               struct mdf_error* error);
"""

_NO_OFFSET = 2**64 - 1
_FAULTS_OF_CALLS = ("argument-missing", "fault-inside")

_ffi = cffi.FFI()
_ffi.cdef(DECLARATIONS)


def library_path() -> Path:
    """Where the library is: in the package, or where ``MDFKIT_LIBRARY`` says."""
    stated = os.environ.get("MDFKIT_LIBRARY")
    return Path(stated) if stated else Path(__file__).with_name("libmdf_reader.so")


@functools.cache
def _library() -> Any:
    path = library_path()
    try:
        return _ffi.dlopen(str(path))
    except OSError as cause:
        raise ImportError(
            f"cannot load {path}: {cause}; install mdfkit from a wheel, or name a library that "
            "you have built by the environment variable MDFKIT_LIBRARY"
        ) from cause


def _text(characters: Any) -> str:
    encoded: bytes = _ffi.string(characters)
    return encoded.decode("utf-8", "replace")


def _exception(error: Any) -> Exception:
    """What is raised for an error of the library."""
    code, sentence = _text(error.code), _text(error.text)
    offset = None if error.offset == _NO_OFFSET else int(error.offset)
    if code == "memory-missing":
        return MemoryError(sentence)
    if code == "query-wrong":
        return WrongQuery(sentence, code, offset)
    if code == "cannot-decode":
        return CannotDecode(sentence, code)
    if code in _FAULTS_OF_CALLS:
        return MdfError(sentence, code, offset)
    return UnreadableFile(sentence, code, offset)


def _taken(text: Any) -> str:
    """Return a text of the library's, which is freed."""
    try:
        return _text(text)
    finally:
        _library().mdf_free(text)


def open_file(path: str) -> OpenFile:
    """Open a file."""
    place = _ffi.new("struct mdf_file **")
    error = _ffi.new("struct mdf_error *")
    if _library().mdf_open(os.fsencode(path), place, error) == 0:
        return OpenFile(path, place[0])
    found = _exception(error)
    if isinstance(found, UnreadableFile) and path != "-" and not os.path.lexists(path):
        raise MissingFile(found.sentence, found.code)
    raise found


class OpenFile:
    """An open file of the library. Its calls let other threads run."""

    def __init__(self, path: str, handle: Any) -> None:
        self.path = path
        # Close may come from another thread while a call is under way.
        self._lock = threading.Lock()
        self._handle: Any = _ffi.gc(handle, _library().mdf_close)

    @property
    def is_open(self) -> bool:
        """Whether it can be used."""
        return self._handle is not None

    def close(self) -> None:
        """Close it; streams go on."""
        with self._lock:
            if self._handle is not None:
                _ffi.release(self._handle)
                self._handle = None

    def describe(self) -> str:
        """Describe the file, as JSON."""
        return self._json(_library().mdf_describe)

    def findings(self) -> str:
        """List what was found to be wrong so far, as JSON."""
        return self._json(_library().mdf_findings)

    def read(self, query: str) -> pa.RecordBatchReader:
        """Open a stream of batches for a query, as JSON."""
        return self._stream(_library().mdf_read, query)

    def frames(self, query: str) -> pa.RecordBatchReader:
        """Open a stream of frames of buses for a query, as JSON."""
        return self._stream(_library().mdf_frames, query)

    def decode(self, query: str) -> tuple[OpenFile, str]:
        """Make a file of the signals of frames, and say as JSON what became of these."""
        place = _ffi.new("struct mdf_file **")
        report = _ffi.new("char **")
        error = _ffi.new("struct mdf_error *")
        with self._lock:
            if _library().mdf_decode(self._used(), query.encode(), place, report, error) != 0:
                raise _exception(error)
        return OpenFile(self.path, place[0]), _taken(report[0])

    def attachment(self, index: int) -> bytes:
        """Read the data of an attachment."""
        size = _ffi.new("uint64_t *")
        error = _ffi.new("struct mdf_error *")
        with self._lock:
            data = _library().mdf_attachment(self._used(), index, size, error)
        if data == _ffi.NULL:
            raise _exception(error)
        try:
            return bytes(_ffi.buffer(data, size[0]))
        finally:
            _library().mdf_free(data)

    def _stream(self, function: Any, query: str) -> pa.RecordBatchReader:
        stream = _ffi.new("struct ArrowArrayStream *")
        error = _ffi.new("struct mdf_error *")
        with self._lock:
            if function(self._used(), query.encode(), stream, error) != 0:
                raise _exception(error)
        # The reader takes the stream out of this structure, and releases it.
        return pa.RecordBatchReader._import_from_c(int(_ffi.cast("uintptr_t", stream)))

    def _used(self) -> Any:
        if self._handle is None:
            raise ValueError(f"{self.path} is closed")
        return self._handle

    def _json(self, function: Any) -> str:
        error = _ffi.new("struct mdf_error *")
        with self._lock:
            text = function(self._used(), error)
        if text == _ffi.NULL:
            raise _exception(error)
        return _taken(text)
