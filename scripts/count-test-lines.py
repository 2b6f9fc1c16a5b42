#!/usr/bin/env python3
"""Counts the lines that are neither blank nor comments, in the tests (tests/, fuzz/,
python/tests) against everything else (C/C++, shell, Python, CMake), build folders left out.

usage: count-test-lines.py [SOURCE-ROOT]
"""
import os, re, sys
root = sys.argv[1] if len(sys.argv) > 1 else '.'
C = ('.c', '.cpp', '.cc', '.h', '.hpp')
H = ('.sh', '.py', '.cmake')
def kind(path, name):
    if name.endswith(C): return 'c'
    if name.endswith(H) or name == 'CMakeLists.txt': return 'h'
    if path.endswith('.ci/run'): return 'h'
    try:
        with open(path, 'rb') as f:
            first = f.readline()
        if first.startswith(b'#!') and (b'bash' in first or b'python' in first or b'sh' in first): return 'h'
    except OSError: pass
    return None
def count(path, k):
    n = 0; inblock = False
    for line in open(path, encoding='utf-8', errors='replace'):
        s = line.strip()
        if k == 'c':
            if inblock:
                if '*/' in s: inblock = False; s = s.split('*/', 1)[1].strip()
                else: continue
            if s.startswith('/*'):
                if '*/' not in s: inblock = True; continue
                s = s.split('*/', 1)[1].strip()
            if not s or s.startswith('//'): continue
        else:
            if not s or s.startswith('#'): continue
        n += 1
    return n
tests = other = 0
for d, dirs, files in os.walk(root):
    rel = os.path.relpath(d, root)
    dirs[:] = [x for x in dirs if not (x.startswith('build') or x == '.git')]
    for f in files:
        p = os.path.join(d, f); k = kind(p, f)
        if not k: continue
        n = count(p, k)
        parts = rel.split(os.sep)
        if parts[0] in ('tests', 'fuzz') or 'tests' in parts: tests += n
        else: other += n
print(f'tests+fuzz {tests}  rest {other}  share of all {100*tests/(tests+other):.1f} %  ratio to rest {100*tests/other:.1f} %')
