# Installed tree.
