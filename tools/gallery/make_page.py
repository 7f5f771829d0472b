"""Writes the page that shows the gallery's pictures, those of each adapter side by side.

usage: make_page.py FOLDER

FOLDER holds a folder of pictures for each adapter (host, windows), and one of their differences if
they were compared; those that are missing are left out. The page is FOLDER/index.html.
"""

import html
import pathlib
import sys

ADAPTERS = {"host": "Host: Cairo and Pango", "windows": "Windows: Direct2D and DirectWrite",
            "differences": "Differences: red, and yellow in texts"}
HEAD = """<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>Gallery</title><style>
body { background: #888; color: #111; font: 14px sans-serif; margin: 20px }
table { border-spacing: 16px } th { text-align: left } img { display: block }
</style></head><body><h1>Gallery</h1><table>
"""


def read_shares(folder):
    """By picture, the shares of differing pixels in words; empty when nothing was compared."""
    table = folder / "differences" / "shares.tsv"
    if not table.exists():
        return {}
    rows = [line.split("\t") for line in table.read_text(encoding="utf-8").splitlines()]
    return {name: f": {ground} % differ, {text} % in texts" for name, ground, text in rows}


def main():
    if len(sys.argv) != 2 or sys.argv[1].startswith("-"):
        sys.exit(__doc__)
    folder = pathlib.Path(sys.argv[1])
    adapters = [name for name in ADAPTERS if any((folder / name).glob("*.png"))]
    pictures = sorted({path.name for name in adapters for path in (folder / name).glob("*.png")})
    if not pictures:
        sys.exit(f"make_page.py: no pictures in {folder}")
    shares = read_shares(folder)
    rows = ["<tr>" + "".join(f"<th>{html.escape(ADAPTERS[name])}</th>" for name in adapters)]
    for picture in pictures:
        name = picture.removesuffix(".png") + shares.get(picture, "")
        rows.append(f'<tr><th colspan="{len(adapters)}">{html.escape(name)}')
        rows.append("<tr>" + "".join(
            f'<td><img src="{name}/{html.escape(picture)}" alt="{name}">' for name in adapters))
    page = folder / "index.html"
    page.write_text(HEAD + "\n".join(rows) + "\n</table></body></html>\n", encoding="utf-8")
    print(f"{len(pictures)} pictures: {page}")


main()
