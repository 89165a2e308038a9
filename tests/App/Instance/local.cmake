# One test runs the program itself to hand a command to a running copy.
add_dependencies(${test_target} harbex-clipboard)
