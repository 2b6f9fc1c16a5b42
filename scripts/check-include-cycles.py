#!/usr/bin/env python3
"""Fails when two units of the library include each other, directly or through
others, or when a folder includes from a folder above it.

A unit is a header with its source file (Log.h and Log.cpp). The folders stand
in this order, each using only those before it:
    the public headers (Interface/*.h: the types every layer shares), OS,
    AICamera/Log, OS/Serial_Linux (it traces), AICamera/Protocol, AICamera/Video,
    AICamera/Device, the exported functions (Interface/*.cpp)
(Protocol and Video do not use each other.)

usage: check-include-cycles.py [SOURCE-ROOT]
"""
import os
import re
import sys

PUBLIC = "Interface/*.h"
LAYERS = [PUBLIC, "OS", "AICamera/Log", "OS/Serial_Linux", "AICamera/Protocol", "AICamera/Video", "AICamera/Device",
          "Interface"]
# Pairs of layers that must not see each other although one stands before the other.
APART = {("AICamera/Protocol", "AICamera/Video"), ("AICamera/Video", "AICamera/Protocol")}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)


def unit_of(path):
    # A public header is a unit of its own, below everything.
    if path.startswith("Interface/") and path.endswith(".h"):
        return path
    return os.path.splitext(path)[0]


def layer_of(path):
    if path.startswith("Interface/") and path.endswith(".h"):
        return PUBLIC
    best = None
    for layer in LAYERS:
        if path == layer or path.startswith(layer + "/"):
            if best is None or len(layer) > len(best):
                best = layer
    return best


def units(root):
    graph = {}
    for layer in LAYERS[1:]:
        top = os.path.join(root, layer)
        for folder, _, files in os.walk(top):
            for name in files:
                if not name.endswith((".h", ".cpp")):
                    continue
                path = os.path.relpath(os.path.join(folder, name), root)
                unit = unit_of(path)
                text = open(os.path.join(root, path), encoding="utf-8").read()
                targets = graph.setdefault(unit, set())
                for included in INCLUDE.findall(text):
                    resolved = os.path.normpath(os.path.join(os.path.dirname(path), included))
                    if not os.path.exists(os.path.join(root, resolved)):
                        resolved = os.path.normpath(included)
                    if os.path.exists(os.path.join(root, resolved)):
                        target = unit_of(resolved)
                        if target != unit:
                            targets.add(target)
    return graph


def cycles(graph):
    found, state, stack = [], {}, []

    def visit(unit):
        state[unit] = "open"
        stack.append(unit)
        for target in sorted(graph.get(unit, ())):
            if state.get(target) == "open":
                found.append(stack[stack.index(target):] + [target])
            elif target not in state:
                visit(target)
        stack.pop()
        state[unit] = "done"

    for unit in sorted(graph):
        if unit not in state:
            visit(unit)
    return found


def upward(graph):
    wrong = []
    for unit, targets in sorted(graph.items()):
        mine = layer_of(unit)
        for target in sorted(targets):
            theirs = layer_of(target)
            if mine and theirs and (LAYERS.index(theirs) > LAYERS.index(mine) or (mine, theirs) in APART):
                wrong.append((unit, target))
    return wrong


def main():
    root = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..")
    graph = units(root)
    problems = 0
    for cycle in cycles(graph):
        print("include cycle: " + " -> ".join(cycle))
        problems += 1
    for unit, target in upward(graph):
        print("%s includes %s, which stands above it or beside it" % (unit, target))
        problems += 1
    print("%d units, %d problems" % (len(graph), problems))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
