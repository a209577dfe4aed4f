# The component itself. Helper owning frame/ completes this.
