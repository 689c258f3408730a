#!/usr/bin/env python3
"""Makes a stand-in for a handset's SDK: the seam's headers, and libraries that define their symbols and do nothing.

usage: stand_in_sdk.py INCLUDE_DIR OUT_DIR C_COMPILER

What links against it links against the real libraries, as far as names go. It prints every symbol it defines.
"""
import json
import pathlib
import shutil
import subprocess
import sys

# Which library of an SDK defines what, by the first letters of the symbol.
LIBRARIES = [
    ("qmi_idl_", "idl"),
    ("qmi_", "qmi_cci"),
    ("uim_", "qmi_common_so"),
    ("nas_", "qmi_common_so"),
    ("vs_", "idl"),
    ("sar_", "idl"),
    ("diag_", "diag"),
    ("Diag_", "diag"),
    ("property_", "cutils"),
    ("__android_log_", "log"),
    ("_ZN8qtimutex", "qcrilNrQtiMutex"),
]


def declared_functions(node, symbols):
    """Collects the mangled names of all functions that are declared and not defined."""
    kind = node.get("kind", "")
    if kind in ("FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl"):
        defined = any(child.get("kind") == "CompoundStmt" for child in node.get("inner", []))
        if not defined and not node.get("isImplicit") and not node.get("explicitlyDeleted"):
            symbols.add(node["mangledName"])
    for child in node.get("inner", []):
        if isinstance(child, dict):
            declared_functions(child, symbols)


def main():
    include, out, compiler = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3]
    headers = sorted(str(path.relative_to(include)) for path in include.rglob("*.h"))
    source = "".join(f'#include "{header}"\n' for header in headers)
    dump = subprocess.run(
        ["clang++", "-std=c++17", f"-I{include}", "-fsyntax-only", "-Xclang", "-ast-dump=json", "-x", "c++", "-"],
        input=source, capture_output=True, text=True, check=True).stdout
    symbols = set()
    declared_functions(json.loads(dump), symbols)

    by_library = {library: [] for _, library in LIBRARIES}
    for symbol in sorted(symbols):
        for prefix, library in LIBRARIES:
            if symbol.startswith(prefix):
                by_library[library].append(symbol)
                break

    shutil.rmtree(out, ignore_errors=True)
    shutil.copytree(include, out / "include")
    (out / "lib").mkdir()
    for library, names in by_library.items():
        code = "".join(f".globl {name}\n.type {name}, %function\n{name}:\n" for name in names)
        subprocess.run([compiler, "-shared", "-nostdlib", "-x", "assembler", "-", "-o",
                        out / "lib" / f"lib{library}.so", f"-Wl,-soname,lib{library}.so"],
                       input=".text\n" + code, text=True, check=True)
        print("\n".join(names))


main()
