#!/usr/bin/env python3
"""Makes the broken files of tests/data/broken, each named after its defect.

Usage: make_broken.py FOLDER

The files are the same wherever they are made: pictures are stored without compression.
"""

import pathlib
import struct
import sys
import zlib

COLOR = b"#0a141e"
XML_HEAD = b'<?xml version="1.0" encoding="utf-8"?>'
CUT_IN_INTEGER = 2


def number(value):
    return struct.pack("<i", value)


def field(content):
    return number(len(content)) + content


def chunk(name, content):
    return struct.pack(">I", len(content)) + name + content + struct.pack(">I", zlib.crc32(name + content))


def png(width, height, rows=None):
    """A grey picture; with rows given, its header promises more than there is."""
    scanlines = b"".join(b"\0" + bytes([160] * width) for _ in range(height if rows is None else rows))
    return (b"\x89PNG\r\n\x1a\n"
            + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(scanlines, 0))
            + chunk(b"IEND", b""))


def element(name, content):
    return b"<" + name + b">" + content + b"</" + name + b">"


def item(changed=None, content=None, names=(b"Id", b"Value", b"Text", b"Border_Type", b"Position")):
    """A label; the changed element gets other content, or is left out when that is None."""
    contents = {b"Id": b"1", b"Value": b"5", b"Text": b"t", b"Border_Type": b"2", b"Position": b"1.00,2.00",
                b"ID": b"1", b"ID_Text": b"t"}
    contents[changed] = content
    return element(b"Item", b"".join(element(name, contents[name]) for name in names
                                     if contents[name] is not None))


def legacy_item(changed=None, content=None):
    return item(changed, content, (b"ID", b"ID_Text", b"Border_Type", b"Position"))


def items(content, version=b' File_Version="1"', root=b"Quillet_Data"):
    return XML_HEAD + b"<" + root + version + b">" + content + b"</" + root + b">"


def bomb(root):
    """Ten entities, each ten times the one before: a thousand million letters."""
    entities = b'<!ENTITY e0 "aaaaaaaaaa">' + b"".join(
        b'<!ENTITY e%d "%s">' % (level, b"&e%d;" % (level - 1) * 10) for level in range(1, 9))
    return (b"<!DOCTYPE x [" + entities + b"]><" + root + b' File_Version="1"><Item><Text>&e8;</Text></Item></'
            + root + b">")


GOOD_ITEMS = items(item())
GOOD_PAGE = field(b"first") + field(png(4, 3)) + field(GOOD_ITEMS)


def header(pages, color=field(COLOR), header_1=field(b""), header_2=field(b"")):
    return number(90210) + number(40) + color + header_1 + header_2 + number(pages)


def second_page(name=field(b"second"), image=field(b""), labels=field(GOOD_ITEMS)):
    """A document whose second page is broken."""
    return header(2) + GOOD_PAGE + name + image + labels


def with_items(content):
    return second_page(labels=field(content))


def project_files():
    whole = header(1) + GOOD_PAGE
    start = len(header(1))
    image_length = start + len(field(b"first"))
    items_length = image_length + len(field(png(4, 3)))
    yield "empty", b""
    yield "seven_bytes", whole[:7]
    yield "other_magic", number(90211) + whole[4:]
    yield "magic_in_the_other_order", struct.pack(">i", 90210) + whole[4:]
    yield "ends_after_label_size", whole[:8]
    yield "ends_in_colour_length", whole[:8 + CUT_IN_INTEGER]
    yield "ends_in_colour", whole[:15]
    yield "ends_in_header_length", whole[:19 + CUT_IN_INTEGER]
    yield "ends_in_page_count", whole[:start - CUT_IN_INTEGER]
    yield "ends_before_the_page", whole[:start]
    yield "ends_in_image_length", whole[:image_length + CUT_IN_INTEGER]
    yield "ends_in_image", whole[:image_length + 30]
    yield "ends_in_items_length", whole[:items_length + CUT_IN_INTEGER]
    yield "ends_in_items", whole[:items_length + 60]
    yield "more_pages_than_records", header(2) + GOOD_PAGE
    yield "page_count_of_2_to_the_31", header(2**31 - 1) + GOOD_PAGE
    yield "page_count_negative", header(-1) + GOOD_PAGE
    yield "colour_length_negative", header(1, color=number(-1)) + GOOD_PAGE
    yield "header_1_length_negative", header(1, header_1=number(-5)) + GOOD_PAGE
    yield "header_2_length_negative", header(1, header_2=number(-2**31)) + GOOD_PAGE
    yield "colour_length_past_the_end", number(90210) + number(40) + number(2**31 - 1) + COLOR
    yield "colour_unknown", header(1, color=field(b"colourless")) + GOOD_PAGE
    yield "name_length_negative", second_page(name=number(-1))
    yield "name_with_zero_byte", second_page(name=field(b"sec\0ond"))
    yield "name_length_past_the_end", second_page(name=number(2**31 - 1))
    yield "image_length_negative", second_page(image=number(-1))
    yield "image_length_past_the_end", second_page(image=number(2**31 - 1))
    yield "image_no_picture", second_page(image=field(b"no picture"))
    yield "image_header_alone", second_page(image=field(png(4, 3)[:33]))
    yield "image_of_900_megapixels", second_page(image=field(png(30000, 30000, 0)))
    yield "items_length_negative", second_page(labels=number(-1))
    yield "items_length_past_the_end", second_page(labels=number(2**31 - 1) + GOOD_ITEMS)
    yield "items_empty", with_items(b"")
    yield "items_no_xml", with_items(b"no xml")
    yield "items_not_closed", with_items(GOOD_ITEMS[:-5])
    yield "items_other_root", with_items(items(item(), root=b"quillet_data"))
    yield "items_without_version", with_items(items(item(), version=b""))
    yield "items_version_2", with_items(items(item(), version=b' File_Version="2"'))
    yield "items_version_no_number", with_items(items(item(), version=b' File_Version="one"'))
    for name in (b"Id", b"Value", b"Border_Type", b"Position"):
        yield "items_without_" + name.decode().lower(), with_items(items(item() + item(name)))
        yield "items_empty_" + name.decode().lower(), with_items(items(item() + item(name, b"")))
    yield "items_without_text", with_items(items(item(b"Text")))
    yield "items_numbers_no_numbers", with_items(items(item(b"Value", b"five")))
    yield "items_position_three_parts", with_items(items(item(b"Position", b"1,2,3")))
    yield "items_position_one_part", with_items(items(item(b"Position", b"1")))
    yield "items_id_twice", with_items(items(item() + item(b"Value", b"6")))
    yield "items_entity_bomb", with_items(bomb(b"Quillet_Data"))
    yield "items_nested_10000_deep", with_items(items(b"<a>" * 10000 + b"</a>" * 10000))
    yield "items_control_character", with_items(items(item(b"Text", b"bell\x07")))


def legacy_pairs():
    look = element(b"Item_Size", element(b"Width", b"48")) + element(b"Colors", element(b"Foreground", b"#0000ff"))
    version = b' File_Version="2"'
    picture = png(6, 5)
    yield "legacy_list_empty", b"", picture
    yield "legacy_list_not_closed", items(look + legacy_item(), version)[:-3], picture
    yield "legacy_other_root", items(look, version, b"Data"), picture
    yield "legacy_without_version", items(look, b""), picture
    yield "legacy_version_3", items(look + legacy_item(), b' File_Version="3"'), picture
    yield "legacy_without_size", items(legacy_item(), version), picture
    yield "legacy_without_colour", items(look[:look.index(b"<Colors>")] + legacy_item(), version), picture
    yield "legacy_without_id", items(look + legacy_item(b"ID"), version), picture
    yield "legacy_without_text", items(look + legacy_item(b"ID_Text"), version), picture
    yield "legacy_empty_position", items(look + legacy_item(b"Position", b""), version), picture
    yield "legacy_position_three_parts", items(look + legacy_item(b"Position", b"1,2,3"), version), picture
    yield "legacy_entity_bomb", bomb(b"Quillet_Data"), picture
    yield "legacy_image_missing", items(look, version), None
    yield "legacy_image_no_picture", items(look, version), b"no picture"
    yield "legacy_image_of_900_megapixels", items(look, version), png(30000, 30000, 0)


def main(folder):
    for name, content in project_files():
        (folder / (name + ".quillet")).write_bytes(content)
    for name, document, picture in legacy_pairs():
        (folder / (name + ".qld")).write_bytes(document)
        if picture is not None:
            (folder / (name + ".qli")).write_bytes(picture)


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    main(pathlib.Path(sys.argv[1]))
