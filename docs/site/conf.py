# SPDX-License-Identifier: Apache-2.0
"""How Sphinx builds the site; scripts/docs prepares its folder and calls it."""

import importlib.metadata
import os
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

project = "zav"
author = "the zav authors"
project_copyright = "the zav authors; licensed under Apache-2.0"
release = re.search(r"VERSION (\d+\.\d+\.\d+)", (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"))[1]
version = release
language = "en"
smartquotes_action = "D"  # dashes only, in the descriptions of parameters; options stand in backticks

extensions = ["myst_nb", "sphinx.ext.autodoc", "sphinx.ext.napoleon", "breathe"]
exclude_patterns = ["site"]

myst_enable_extensions = ["colon_fence", "deflist"]
myst_heading_anchors = 4
nb_execution_mode = "off"  # scripts/test-python runs the notebook and compares its outputs

# The Python package is read from its sources. Its extension module and its metadata come with the build only.
sys.path.insert(0, str(ROOT / "python"))
autodoc_mock_imports = ["zav._core"]
autodoc_typehints = "description"
autodoc_typehints_description_target = "documented_params"
autodoc_member_order = "bysource"
napoleon_google_docstring = False
napoleon_use_ivar = True
_installed_version = importlib.metadata.version
importlib.metadata.version = lambda name: release if name == "zav" else _installed_version(name)

breathe_projects = {"zav": os.environ["ZAV_DOXYGEN_XML"]}
breathe_default_project = "zav"
cpp_maximum_signature_line_length = 90

toc_object_entries_show_parents = "hide"

html_theme = "furo"
html_title = f"zav {release}"
html_static_path = [str(ROOT / "docs/site/static")]
html_css_files = ["site.css"]
html_show_sourcelink = False
html_copy_source = False
html_theme_options = {"navigation_with_keys": True}
