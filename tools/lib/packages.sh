# The lists of packages that the tool chains are made of.

# What both tool chains have.
package_names()
{
    package_names_in "$repository/tools/packages.txt"
}

# What the root of the chosen kind has.
root_package_names()
{
    package_names
    [[ $root_kind != workshop ]] || package_names_in "$repository/tools/packages-workshop.txt"
}

package_names_in()
{
    sed 's/#.*//' "$1" | awk 'NF { print $1 }'
}
