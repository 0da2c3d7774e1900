"""shown_in_notebook.py OUT.html: executes a notebook that shows a page, and exports it."""

import sys
from pathlib import Path

import nbclient
import nbconvert
import nbformat

CODE = """
import veq
network = veq.read("data/lesmis.xnet")
network.show(walk=veq.Walkers(network, range(5)).record(300, seed=1), title="In a notebook")
"""
notebook = nbformat.v4.new_notebook(cells=[nbformat.v4.new_code_cell(CODE)])
nbclient.NotebookClient(notebook, timeout=300, kernel_name="python3").execute()
html, _ = nbconvert.HTMLExporter(template_name="basic").from_notebook_node(notebook)
Path(sys.argv[1]).write_text(f"<!doctype html><title>Notebook</title>{html}", encoding="utf-8")
