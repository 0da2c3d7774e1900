"""The site of the documentation, built by scripts/docs."""

import re
from pathlib import Path

ROOT = Path(__file__).parents[2]

project = "VEQ"
author = "The VEQ developers"
version = release = re.search(
    r"project\(veq VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text()
).group(1)

extensions = ["myst_nb", "sphinx.ext.autodoc", "sphinx.ext.napoleon"]
html_theme = "furo"
html_title = f"VEQ {release}"
exclude_patterns = ["build"]
myst_heading_anchors = 3
# The pages of docs/ are for readers of the source tree, too, whose links lead to its files.
suppress_warnings = ["myst.xref_missing", "myst.header"]

nb_execution_mode = "force"
nb_execution_raise_on_error = True
nb_execution_timeout = 300
nb_execution_show_tb = True

autodoc_member_order = "bysource"
autodoc_typehints = "none"
napoleon_google_docstring = False
