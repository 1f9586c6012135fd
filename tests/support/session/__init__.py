# SPDX-License-Identifier: MIT
"""The parts of a desktop session that the end-to-end tests, scripts/soak and scripts/chaos
start: a message bus, a display, and a machine with sensors."""
