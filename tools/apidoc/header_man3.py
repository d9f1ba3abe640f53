#!/usr/bin/env python3
"""Reference pages in man section 3 from the comments of the public header.

The header is divided into families by banner comments (a line of dashes,
the family's title, optional prose, a closing line of dashes); each exported
function (a TARV_API declaration) is documented by the comment right above
it, which may document a run of declarations at once. This writes one page
per family (tarv_<family>.3: the family's prose, then each function's
prototype and comment), a link page per function (Tarv__ReadMEP.3, holding
".so man3/tarv_<family>.3") and an overview page libtarv.3 made of the
header's first comment and the list of families.

Usage: header_man3.py HEADER OUTDIR VERSION
"""
import re
import sys
from pathlib import Path

DASHES = re.compile(r"^\s*/?\*?\s*-{20,}\s*(\*/)?\s*$")


def comment_text(lines):
    """The text of a /* ... */ block, without its frame and leading stars."""
    out = []
    for line in lines:
        line = line.strip()
        line = re.sub(r"^/\*+", "", line)
        line = re.sub(r"\*+/$", "", line)
        line = re.sub(r"^\* ?", "", line)
        out.append(line.rstrip())
    while out and not out[0].strip():
        out.pop(0)
    while out and not out[-1].strip():
        out.pop()
    return out


def parse(header):
    """(intro lines, [family]) where family = {title, prose, entries}."""
    lines = header.read_text(encoding="utf-8").splitlines()
    intro, families = [], []
    family = None
    comment = None  # the last comment block seen, as lines
    i = 0
    while i < len(lines):
        line = lines[i]
        stripped = line.strip()
        if stripped.startswith("/*"):
            block = [line]
            while "*/" not in lines[i]:
                i += 1
                block.append(lines[i])
            i += 1
            if DASHES.match(block[0]) and len(block) >= 3:
                text = comment_text(block[1:-1])
                family = {"title": text[0].strip(), "prose": text[1:], "entries": []}
                families.append(family)
                comment = None
            elif not intro and family is None:
                intro = comment_text(block)
            else:
                comment = comment_text(block)
            continue
        if stripped.startswith("TARV_API"):
            decls = []
            while i < len(lines) and lines[i].strip().startswith("TARV_API"):
                decl = lines[i].strip()
                while not decl.endswith(";"):
                    i += 1
                    decl += " " + lines[i].strip()
                decls.append(decl[len("TARV_API"):].strip())
                i += 1
            if family is not None:
                family["entries"].append({"decls": decls, "text": comment or []})
            comment = None
            continue
        if stripped and not stripped.startswith("#"):
            comment = None if not stripped.startswith("}") else comment
        i += 1
    return intro, [f for f in families if f["entries"]]


def slug(title):
    words = re.findall(r"[a-z0-9]+", re.sub(r"\"[^\"]*\"", "", title.lower()).split("(")[0])
    return "tarv_" + "_".join(w for w in words if w not in ("and", "by", "the"))


def name_of(decl):
    return re.search(r"(\w+)\s*\(", decl).group(1)


def roff(text):
    """Escapes a line for roff: backslashes, and a leading dot or quote."""
    text = text.replace("\\", "\\e").replace("-", "\\-")
    if text.startswith((".", "'")):
        text = "\\&" + text
    return text


def paragraphs(lines):
    """Prose as roff: indented lines (tables, lists) kept verbatim."""
    out, verbatim = [], False
    for line in lines:
        indented = line.startswith("  ") or re.match(r"^\s*-\s", line)
        if not line.strip():
            if verbatim:
                out.append(".fi")
                verbatim = False
            out.append(".PP")
            continue
        if indented and not verbatim:
            out += [".nf"]
            verbatim = True
        elif not indented and verbatim:
            out.append(".fi")
            verbatim = False
        out.append(roff(line))
    if verbatim:
        out.append(".fi")
    return out


def header_lines(name, version):
    return [f'.TH {name.upper()} 3 "" "tarv {version}" "libtarv Reference"']


def family_page(family, version):
    page = slug(family["title"])
    names = [name_of(d) for e in family["entries"] for d in e["decls"]]
    out = header_lines(page, version)
    out += [".SH NAME", roff(", ".join(names)) + " \\- " + roff(family["title"]),
            ".SH SYNOPSIS", ".nf", ".B #include <tarv/tarv.h>", ".PP"]
    for entry in family["entries"]:
        for decl in entry["decls"]:
            out.append(".BI \"" + roff(decl).replace('"', '\\(dq') + "\"")
    out += [".fi", ".PP", "Link with \\fI\\-ltarv\\fP."]
    out.append(".SH DESCRIPTION")
    if family["prose"]:
        out += paragraphs(family["prose"])
    for entry in family["entries"]:
        heads = [name_of(d) for d in entry["decls"]]
        out += [".SS " + roff(", ".join(heads) + "()")]
        out += paragraphs(entry["text"]) if entry["text"] else ["Not documented."]
    out += [".SH SEE ALSO", ".BR libtarv (3)"]
    return page, out, names


def overview_page(intro, pages, version):
    out = header_lines("libtarv", version)
    out += [".SH NAME", "libtarv \\- access to the Ethernet service OAM configuration and state of the switch",
            ".SH SYNOPSIS", ".nf", ".B #include <tarv/tarv.h>", ".fi", ".PP",
            "Link with \\fI\\-ltarv\\fP (\\fIpkg\\-config \\-\\-libs tarv\\fP).", ".SH DESCRIPTION"]
    out += paragraphs(intro[1:] if intro and intro[0].startswith("libtarv") else intro)
    out += [".SH FAMILIES"]
    for page, title in pages:
        out += [".TP", f".BR {page} (3)", roff(title)]
    out += [".SH SEE ALSO", ".BR tarvctl (1)"]
    return out


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    header, outdir, version = Path(sys.argv[1]), Path(sys.argv[2]), sys.argv[3]
    outdir.mkdir(parents=True, exist_ok=True)
    intro, families = parse(header)
    listed, seen = [], set()
    for family in families:
        page, lines, names = family_page(family, version)
        lines[-1] = ".BR libtarv (3)"
        (outdir / f"{page}.3").write_text("\n".join(lines) + "\n", encoding="utf-8")
        listed.append((page, family["title"]))
        for name in names:
            if name in seen:
                sys.exit(f"{name} is declared twice")
            seen.add(name)
            (outdir / f"{name}.3").write_text(f".so man3/{page}.3\n", encoding="utf-8")
    (outdir / "libtarv.3").write_text("\n".join(overview_page(intro, listed, version)) + "\n", encoding="utf-8")
    print(f"{len(seen)} functions in {len(listed)} pages")


if __name__ == "__main__":
    main()
