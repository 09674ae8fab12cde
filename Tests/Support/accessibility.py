#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""What a screen reader sees of a program, for tests: asks the accessibility bus and prints the answer.

    accessibility.py PROGRAM tree              every object: depth, role, name, description, states, actions
    accessibility.py PROGRAM text ROLE NAME    the text of an object
    accessibility.py PROGRAM press ROLE NAME   its first action
    accessibility.py PROGRAM place ROLE NAME   where it stands on the screen: x y width height
    accessibility.py PROGRAM insert ROLE NAME TEXT   puts a text at the end of its own
    accessibility.py PROGRAM caret ROLE NAME   its caret position and selections
    accessibility.py PROGRAM extents ROLE NAME OFFSET   where a character stands on the screen: x y width height
Fields are separated by tabs. Exits with 1 when there is no such program or object.
"""

import sys

import pyatspi


def application(name):
    for candidate in pyatspi.Registry.getDesktop(0):
        if candidate is not None and candidate.name == name:
            return candidate
    sys.exit(1)


def objects(parent, depth=0):
    for child in parent:
        if child is None:
            continue
        yield depth, child
        yield from objects(child, depth + 1)


def is_showing(accessible):
    return accessible.getState().contains(pyatspi.STATE_SHOWING)


def find(root, role, name):
    for _, candidate in objects(root):
        if candidate.getRoleName() == role and candidate.name == name and is_showing(candidate):
            return candidate
    sys.exit(1)


def actions(accessible):
    try:
        action = accessible.queryAction()
    except NotImplementedError:
        return []
    return [action.getName(index) for index in range(action.nActions)]


def states(accessible):
    return sorted(pyatspi.stateToString(state) for state in accessible.getState().getStates())


def clean(text):
    return (text or "").replace("\t", " ").replace("\n", "\\n")


def main():
    program, command, *arguments = sys.argv[1:]
    root = application(program)
    if command == "tree":
        for depth, accessible in objects(root):
            print(depth, accessible.getRoleName(), clean(accessible.name), clean(accessible.description),
                  " ".join(states(accessible)), " ".join(actions(accessible)), sep="\t")
        return
    accessible = find(root, *arguments[:2])
    if command == "press":
        if not accessible.queryAction().doAction(0):
            sys.exit(1)
    elif command == "place":
        extents = accessible.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        print(extents.x, extents.y, extents.width, extents.height)
    elif command == "insert":
        end = accessible.queryText().characterCount
        if not accessible.queryEditableText().insertText(end, arguments[2], len(arguments[2])):
            sys.exit(1)
    elif command == "text":
        print(accessible.queryText().getText(0, -1), end="")
    elif command == "caret":
        text = accessible.queryText()
        print(text.caretOffset, *(text.getSelection(index) for index in range(text.getNSelections())), sep="\t")
    elif command == "extents":
        print(*accessible.queryText().getCharacterExtents(int(arguments[2]), pyatspi.DESKTOP_COORDS))
    else:
        sys.exit(2)


main()
