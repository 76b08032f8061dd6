#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# Copyright (c) 2026 the quorvel authors
"""joined.py <json of quorvel_bench> ...: several runs as one, on the standard output, with the machine of the first."""
import json
import sys
from pathlib import Path

runs = [json.loads(Path(path).read_text(encoding="utf-8")) for path in sys.argv[1:]]
rows = [row for run in runs for row in run["benchmarks"]]
json.dump({"context": runs[0]["context"], "benchmarks": rows}, sys.stdout, indent=1)
