import sys

from tuning.cli import main

if __name__ == "__main__":
    sys.exit(main())
