"""The manual page."""

import re

from tables import arguments, common, is_argument, own


def roff(text):
    """Text as it stands; a hyphen is the one that can be searched and copied."""
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return re.sub(r"^([.'])", r"\\&\1", text, flags=re.MULTILINE)


def bold(text):
    return f"\\fB{roff(text)}\\fR"


def italic(text):
    return f"\\fI{roff(text)}\\fR"


def usage(verb):
    words = [bold("tessary"), bold(verb["name"])]
    for each in arguments(verb):
        name = italic(each["names"][0]) + ("..." if each["several"] else "")
        words.append(name if each["required"] else f"[{name}]")
    words += [f"{bold(each['names'][-1])} {italic(each['value'])}" for each in own(verb) if each["required"]]
    return " ".join([*words, f"[{italic('options')}]"])


def entry(option):
    names = italic(option["names"][0]) if is_argument(option) else ", ".join(map(bold, option["names"]))
    value = f" {italic(option['value'])}" if option["value"] else ""
    return f".TP\n{names}{value}\n{roff(option['description'])}\n"


def help_text(text):
    """Paragraphs, and examples, which are what begins with a blank."""
    made = ""
    for paragraph in text.split("\n\n"):
        lines = paragraph.split("\n")
        words = [line for line in lines if not line.startswith(" ")]
        examples = [line.strip() for line in lines if line.startswith(" ")]
        made += ".PP\n" + roff("\n".join(words)) + "\n" if words else ""
        if examples:
            made += ".PP\n.RS 4\n.EX\n" + roff("\n".join(examples)) + "\n.EE\n.RE\n"
    return made


def of_verb(verb):
    return (f".SS {verb['name']}\n{usage(verb)}\n.PP\n{roff(verb['description'])}.\n"
            + "".join(map(entry, [*arguments(verb), *own(verb)])) + help_text(verb["help"]))


def manual(tables, version):
    program = tables["program"]
    summary = program["description"].rstrip(".")
    verbs = "".join(f".TP\n{bold(verb['name'])}\n{roff(verb['description'])}\n" for verb in tables["verbs"])
    return (f'.TH TESSARY 1 "" "tessary {version}" "User Commands"\n'
            f".SH NAME\ntessary \\- {roff(summary[0].lower() + summary[1:])}\n"
            f".SH SYNOPSIS\n{bold('tessary')} {italic('VERB')} [{italic('arguments')}] [{italic('options')}]\n"
            f".SH DESCRIPTION\n{verbs}"
            f".SH OPTIONS OF EVERY VERB\n{''.join(map(entry, common(tables)))}"
            f".SH VERBS\n{''.join(map(of_verb, tables['verbs']))}"
            f".SH EXIT STATUS\n{roff(program['help'].removeprefix('Exit codes: '))}\n")
