"""A consumer of Arrow's C interface that shares nothing with the package: the three structs by their
published layout, with ctypes."""
import ctypes


class Schema(ctypes.Structure):
    pass


class Array(ctypes.Structure):
    pass


class Stream(ctypes.Structure):
    pass


Schema._fields_ = [
    ("format", ctypes.c_char_p), ("name", ctypes.c_char_p), ("metadata", ctypes.c_void_p),
    ("flags", ctypes.c_int64), ("n_children", ctypes.c_int64),
    ("children", ctypes.POINTER(ctypes.POINTER(Schema))), ("dictionary", ctypes.POINTER(Schema)),
    ("release", ctypes.CFUNCTYPE(None, ctypes.POINTER(Schema))), ("private_data", ctypes.c_void_p)]
Array._fields_ = [
    ("length", ctypes.c_int64), ("null_count", ctypes.c_int64), ("offset", ctypes.c_int64),
    ("n_buffers", ctypes.c_int64), ("n_children", ctypes.c_int64),
    ("buffers", ctypes.POINTER(ctypes.c_void_p)),
    ("children", ctypes.POINTER(ctypes.POINTER(Array))), ("dictionary", ctypes.POINTER(Array)),
    ("release", ctypes.CFUNCTYPE(None, ctypes.POINTER(Array))), ("private_data", ctypes.c_void_p)]
Stream._fields_ = [
    ("get_schema", ctypes.CFUNCTYPE(ctypes.c_int, ctypes.POINTER(Stream), ctypes.POINTER(Schema))),
    ("get_next", ctypes.CFUNCTYPE(ctypes.c_int, ctypes.POINTER(Stream), ctypes.POINTER(Array))),
    ("get_last_error", ctypes.CFUNCTYPE(ctypes.c_char_p, ctypes.POINTER(Stream))),
    ("release", ctypes.CFUNCTYPE(None, ctypes.POINTER(Stream))), ("private_data", ctypes.c_void_p)]

_pointer = ctypes.pythonapi.PyCapsule_GetPointer
_pointer.restype = ctypes.c_void_p
_pointer.argtypes = [ctypes.py_object, ctypes.c_char_p]


def of(capsule, name, struct):
    """The struct that a capsule holds, which stays the capsule's."""
    return ctypes.cast(_pointer(capsule, name), ctypes.POINTER(struct)).contents


def columns_of(schema):
    """Name and format of every column."""
    return [(schema.children[i].contents.name.decode(), schema.children[i].contents.format.decode())
            for i in range(schema.n_children)]


_C_TYPES = {"g": ctypes.c_double, "l": ctypes.c_int64, "c": ctypes.c_int8, "tdD": ctypes.c_int32,
            "tsu:": ctypes.c_int64, "tDu": ctypes.c_int64}


def values_of(array, column, code):
    """A column's values, None where one is missing."""
    child = array.children[column].contents
    bits = ctypes.cast(child.buffers[0], ctypes.POINTER(ctypes.c_uint8))
    values = []
    for row in range(child.length):
        if child.buffers[0] and not bits[row // 8] >> row % 8 & 1:
            values.append(None)
        elif code == "u":
            offsets = ctypes.cast(child.buffers[1], ctypes.POINTER(ctypes.c_int32))
            text = ctypes.string_at(child.buffers[2] + offsets[row], offsets[row + 1] - offsets[row])
            values.append(text.decode())
        else:
            values.append(ctypes.cast(child.buffers[1], ctypes.POINTER(_C_TYPES[code]))[row])
    return values


def next_batch(stream):
    """The next array, to be released; None at the end."""
    array = Array()
    assert stream.get_next(ctypes.byref(stream), ctypes.byref(array)) == 0
    return array if array.release else None
