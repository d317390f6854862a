# SPDX-License-Identifier: Apache-2.0
# Runs on what was installed to be packed.
file(REMOVE_RECURSE ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${CPACK_CORVANE_GDB_FOLDER})
