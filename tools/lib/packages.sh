# The lists of packages that the tool chains are made of.

# What both tool chains have.
package_names()
{
    package_names_in "$repository/tools/packages.txt"
}

# What the build root has.
root_package_names()
{
    package_names
    local of_suite=$repository/tools/packages-$suite.txt
    [[ ! -f $of_suite ]] || package_names_in "$of_suite"
}

package_names_in()
{
    sed 's/#.*//' "$1" | awk 'NF { print $1 }'
}
