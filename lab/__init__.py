# SPDX-License-Identifier: MIT
"""The private machine in which the daemon is tested and demonstrated."""
