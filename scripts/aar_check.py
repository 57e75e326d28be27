"""Holds an Android archive against the published format of Prefab packages, schema version 2, and its libraries against
what they are said to be."""
import json
import re
import struct
import xml.etree.ElementTree
import zipfile

MACHINES = {"arm64-v8a": 183, "x86_64": 62}
STLS = {"none", "system", "c++_shared", "c++_static", "gnustl_shared", "gnustl_static", "stlport_shared", "stlport_static"}
PREFAB = {"schema_version": int, "name": str, "version": str, "dependencies": list}
MODULE = {"export_libraries": list, "library_name": str, "android": dict}
ABI = {"abi": str, "api": int, "ndk": int, "stl": str, "static": bool}
HEADER_NAMES = {"qorv_skia.h", "qorv_skia.hpp"}


def require(condition, what):
    if not condition:
        raise SystemExit(f"FAILED: {what}")


def fields(archive, name, types):
    value = json.loads(archive.read(name))
    found = {key: type(item) for key, item in value.items()}
    require(found == types, f"{name}: fields {found}, not {types}")
    return value


def sections(elf):
    """Names and contents of the sections of a 64-bit little-endian ELF file."""
    offset, = struct.unpack_from("<Q", elf, 40)
    count, names = struct.unpack_from("<HH", elf, 60)
    headers = [struct.unpack_from("<IIQQQQ", elf, offset + 64 * i) for i in range(count)]
    texts = headers[names][4]
    return {elf[texts + h[0]:elf.index(b"\0", texts + h[0])].decode(): elf[h[4]:h[4] + h[5]] for h in headers}


def check_object(elf, abi, what):
    require(elf[:6] == b"\x7fELF\x02\x01", f"{what}: not a 64-bit little-endian ELF file")
    require(struct.unpack_from("<H", elf, 18)[0] == MACHINES[abi], f"{what}: for another processor than {abi}")


def check_static(library, abi, what):
    require(library[:8] == b"!<arch>\n", f"{what}: not an archive of objects")
    first = library.index(b"\x7fELF")
    check_object(library[first:], abi, what)


def check_libraries(archive, symbols, folder, abi, static, min_sdk):
    libs = f"{folder}/libs/android.{abi}"
    said = fields(archive, f"{libs}/abi.json", ABI)
    require(said["abi"] == abi and said["static"] == static, f"{libs}: says {said}")
    require(said["stl"] in STLS and said["ndk"] >= 21 and said["api"] == min_sdk, f"{libs}: says {said}")
    if static:
        check_static(archive.read(f"{libs}/libqorv_skia.a"), abi, libs)
        return
    library = archive.read(f"{libs}/libqorv_skia.so")
    whole = symbols.read(f"{abi}/libqorv_skia.so")
    for elf in (library, whole):
        check_object(elf, abi, libs)
    require(library == archive.read(f"jni/{abi}/libqorv_skia.so"), f"{abi}: jni/ and prefab/ differ")
    require(".symtab" not in sections(library), f"{abi}: the archive's library is not stripped")
    require({".symtab", ".debug_info", ".debug_line"} <= set(sections(whole)), f"{abi}: the symbols are not complete")
    name = ".note.gnu.build-id"
    require(name in sections(library) and sections(library)[name] == sections(whole)[name], f"{abi}: build identifiers differ")
    require(sections(library)[".text"] == sections(whole)[".text"], f"{abi}: the symbols are of another library")


def check(path, symbols_path):
    with zipfile.ZipFile(path) as archive, zipfile.ZipFile(symbols_path) as symbols:
        for opened in (archive, symbols):
            require(opened.testzip() is None, "an entry is damaged")
        manifest = xml.etree.ElementTree.fromstring(archive.read("AndroidManifest.xml"))
        require(manifest.tag == "manifest" and re.fullmatch(r"[a-z]\w*(\.[a-z]\w*)+", manifest.get("package")), "the manifest")
        min_sdk = int(manifest.find("uses-sdk").get("{http://schemas.android.com/apk/res/android}minSdkVersion"))
        metadata = archive.read("META-INF/com/android/build/gradle/aar-metadata.properties").decode()
        require(re.search(r"^aarFormatVersion=1\.0$", metadata, re.M) and re.search(r"^aarMetadataVersion=1\.0$", metadata, re.M),
                "META-INF's properties")

        package = fields(archive, "prefab/prefab.json", PREFAB)
        require(package["schema_version"] == 2 and re.fullmatch(r"[\w-]+", package["name"]), f"prefab.json: {package}")
        require(re.fullmatch(r"\d+(\.\d+){0,3}", package["version"]), "a version that CMake does not take")
        expected = {"AndroidManifest.xml", "META-INF/com/android/build/gradle/aar-metadata.properties", "prefab/prefab.json"}
        for module, static in (("qorv_skia", False), ("qorv_skia_static", True)):
            folder = f"prefab/modules/{module}"
            said = fields(archive, f"{folder}/module.json", MODULE)
            require(said["library_name"].startswith("lib") and not said["export_libraries"], f"{module}: says {said}")
            expected |= {f"{folder}/module.json"} | {f"{folder}/include/{name}" for name in HEADER_NAMES}
            for abi in MACHINES:
                check_libraries(archive, symbols, folder, abi, static, min_sdk)
                file = said["library_name"] + (".a" if static else ".so")
                expected |= {f"{folder}/libs/android.{abi}/abi.json", f"{folder}/libs/android.{abi}/{file}"}
                if not static:
                    expected.add(f"jni/{abi}/{file}")
        require(set(archive.namelist()) == expected, f"entries: {set(archive.namelist()) ^ expected}")
