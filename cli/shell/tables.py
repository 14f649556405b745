"""What the program's tables of options say, in the words of shells and manuals.

`tessary help --json` gives for the program and each verb a name, a description, a help text and options: names, the
word for the value or null, the words that it may be or null, whether it is required, whether there may be several,
the group, and a description.
"""

OF_EVERY_VERB = "Options of every verb"
FILES, FOLDERS = "FILE", "DIR"


def is_argument(option):
    """Whether it stands without a name of its own, as INPUT does."""
    return not option["names"][0].startswith("-")


def arguments(verb):
    return [option for option in verb["options"] if is_argument(option)]


def named(verb):
    return [option for option in verb["options"] if not is_argument(option)]


def own(verb):
    return [option for option in named(verb) if option["group"] != OF_EVERY_VERB]


def common(tables):
    """The options that every verb has, and those that stand without one."""
    found = {}
    for each in [*tables["verbs"], tables["program"]]:
        for option in named(each):
            if each is tables["program"] or option["group"] == OF_EVERY_VERB:
                found.setdefault(option["names"][0], option)
    return list(found.values())


def takes_files(verb):
    return any(option["names"][0] == "INPUT" for option in arguments(verb))


def takes_verbs(verb):
    return any(option["names"][0] == "VERB" for option in arguments(verb))


def verb_names(tables):
    return [verb["name"] for verb in tables["verbs"]]
