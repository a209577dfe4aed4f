# The command-line tool.
